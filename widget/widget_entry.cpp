#include "widget/widget_entry.h"

#include <memory>

#include "extensions/login_items.h"
#include "widget/widget_view_controller.h"

namespace virelune {

WidgetEntry widgetEntry() {
  const auto made = std::make_shared<std::weak_ptr<VLWidgetViewController>>();
  const auto make = [made] {
    auto controller = platform::make<VLWidgetViewController>();
    *made = controller;
    return controller;
  };
  const auto showsLiveProgramme = [made] {
    const auto controller = made->lock();
    return controller && controller->showsLiveProgramme();
  };
  return {.principalClasses = {{"VLWidgetViewController", make}},
          .isLaunchingAtLogin = vl_isLaunchingAtLogin,
          .setLaunchingAtLogin = vl_setLaunchingAtLogin,
          .showsLiveProgramme = showsLiveProgramme};
}

}  // namespace virelune
