#include "widget/widget_view_controller.h"

#include "extensions/views.h"
#include "panels/about_view_controller.h"
#include "panels/info_view_controller.h"
#include "player/process_queries.h"
#include "track/track_view_controller.h"

namespace virelune {

VLWidgetViewController::~VLWidgetViewController() { setContentViewController(nullptr); }

// What the host asks

void VLWidgetViewController::widgetPerformUpdateWithCompletionHandler(
    const std::function<void(platform::NCUpdateResult)>& handler) {
  update(this);
  if (handler) handler(platform::NCUpdateResult::newData);
}

platform::NSEdgeInsets VLWidgetViewController::widgetMarginInsetsForProposedMarginInsets(
    platform::NSEdgeInsets) {
  return platform::NSEdgeInsetsZero;
}

void VLWidgetViewController::widgetDidBeginEditing() { showAboutViewController(this); }

void VLWidgetViewController::widgetDidEndEditing() {
  setViewController(nullptr);
  updateViewController(this);
}

// Choosing the panel

bool VLWidgetViewController::update(NSObject* sender) {
  VLViewController::update(sender);
  updateViewController(sender);
  return true;
}

bool VLWidgetViewController::updateViewController(NSObject* sender) {
  if (isAboutViewControllerVisible()) return false;
  if (vl_iTunesIsRunningAndPlaying()) {
    if (isTrackViewControllerVisible()) return false;
    showTrackViewController(sender);
    return true;
  }
  if (isInfoViewControllerVisible()) return false;
  showInfoViewController(sender);
  return true;
}

bool VLWidgetViewController::showAboutViewController(NSObject*) {
  const auto controller = platform::make<VLAboutViewController>();
  return controller && setViewController(controller);
}

bool VLWidgetViewController::showInfoViewController(NSObject*) {
  const auto controller = platform::make<VLTInfoViewController>();
  return controller && setViewController(controller);
}

bool VLWidgetViewController::showTrackViewController(NSObject*) {
  const auto controller = platform::make<VLTrackViewController>();
  return controller && setViewController(controller);
}

// Replacing the panel

bool VLWidgetViewController::setViewController(std::shared_ptr<VLViewController> controller) {
  setSubview(nullptr);
  setContentViewController(nullptr);
  if (!controller) return false;
  const auto view = controller->view();
  if (!view) return false;
  setContentViewController(std::move(controller));
  setSubview(view);
  return true;
}

bool VLWidgetViewController::setSubview(const std::shared_ptr<platform::NSView>& subview) {
  const auto root = view();
  if (!root) return false;
  vl_removeSubviews(root);
  if (!subview) return false;
  const platform::NSSize size = subview->frame().size;
  setPreferredContentSize(size);
  root->setFrameSize(size);
  root->addSubview(subview);
  return true;
}

std::optional<LiveProgramme> VLWidgetViewController::liveProgramme() const {
  return contentViewController() ? contentViewController()->liveProgramme() : std::nullopt;
}

bool VLWidgetViewController::isAboutViewControllerVisible() const {
  return std::dynamic_pointer_cast<VLAboutViewController>(contentViewController()) != nullptr;
}

bool VLWidgetViewController::isInfoViewControllerVisible() const {
  return std::dynamic_pointer_cast<VLTInfoViewController>(contentViewController()) != nullptr;
}

bool VLWidgetViewController::isTrackViewControllerVisible() const {
  return std::dynamic_pointer_cast<VLTrackViewController>(contentViewController()) != nullptr;
}

}  // namespace virelune
