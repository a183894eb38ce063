#include "widget/widget_entry.h"

#include "extensions/login_items.h"
#include "track/track_view_controller.h"
#include "widget/widget_view_controller.h"

namespace virelune {

namespace {

bool showsLiveProgramme(const platform::NSViewController& controller) {
  const auto* widget = dynamic_cast<const VLWidgetViewController*>(&controller);
  if (widget == nullptr) return false;
  const auto* panel =
      dynamic_cast<const VLTrackViewController*>(widget->contentViewController().get());
  const auto loader = panel != nullptr ? panel->contentBeats1InfoLoader() : nullptr;
  return loader && loader->infoTrackName() && loader->infoTrackArtwork();
}

}  // namespace

platform::PrincipalClasses principalClasses() {
  return {{"VLWidgetViewController", [] { return platform::make<VLWidgetViewController>(); }}};
}

WidgetEntry widgetEntry() {
  return {principalClasses(), vl_isLaunchingAtLogin, vl_setLaunchingAtLogin, showsLiveProgramme};
}

}  // namespace virelune
