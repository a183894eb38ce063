#include "widget/widget_entry.h"

#include "widget/widget_view_controller.h"

namespace virelune {

platform::PrincipalClasses principalClasses() {
  return {{"VLWidgetViewController", [] { return platform::make<VLWidgetViewController>(); }}};
}

}  // namespace virelune
