#include "panels/info_view_controller.h"

#include "extensions/strings.h"
#include "panels/application_item.h"
#include "player/process_queries.h"
#include "widget/constants.h"
#include "widget/panel_button.h"

namespace virelune {

using platform::NSButton;

VLTInfoViewController::~VLTInfoViewController() {
  setContentTitleButton(nullptr);
  setContentActionButton(nullptr);
}

// Building

bool VLTInfoViewController::prepare() {
  VLViewController::prepare();
  prepareActionButton();
  prepareTitleButton();
  return true;
}

bool VLTInfoViewController::prepareActionButton() {
  const auto root = view();
  if (!root) return false;
  const auto button = preparedActionButton();
  if (!button) return false;
  configurePanelButton(*button, nullptr, shared_from_this(),
                       &VLTInfoViewController::clickedActionButton);
  setContentActionButton(button);
  root->addSubview(button);
  return true;
}

bool VLTInfoViewController::prepareTitleButton() {
  const auto root = view();
  if (!root) return false;
  const auto button = preparedTitleButton();
  if (!button) return false;
  setContentTitleButton(button);
  root->addSubview(button);
  return true;
}

std::shared_ptr<NSButton> VLTInfoViewController::preparedActionButton() {
  return platform::make<NSButton>(preparedActionButtonFrame());
}

std::shared_ptr<NSButton> VLTInfoViewController::preparedTitleButton() {
  auto title = infoItemTitle();
  if (!title) return nullptr;
  return preparedTextButton(preparedTitleButtonFrame(), std::move(*title), shared_from_this(),
                            &VLTInfoViewController::clickedActionButton);
}

platform::NSRect VLTInfoViewController::preparedViewFrame() {
  platform::NSRect frame = VLViewController::preparedViewFrame();
  frame.size.height = 30;
  return frame;
}

platform::NSRect VLTInfoViewController::preparedActionButtonFrame() const {
  return platform::NSMakeRect(18, 5, 20, 20);
}

platform::NSRect VLTInfoViewController::preparedTitleButtonFrame() const {
  return platform::NSMakeRect(45, 0, 260, 30);
}

// Values

std::optional<platform::NSAttributedString> VLTInfoViewController::infoItemTitle() const {
  return titleWithText(vl_localizedString(vl_iTunesIsRunning() ? "0001.0002" : "0001.0001"), 13);
}

std::shared_ptr<platform::NSImage> VLTInfoViewController::infoItemActionImage() const {
  return applicationImage(VLBundleIdentifier_iTunes);
}

// Refresh

bool VLTInfoViewController::update(NSObject* sender) {
  VLViewController::update(sender);
  updateActionButton();
  updateTitleButton();
  return true;
}

bool VLTInfoViewController::updateActionButton() {
  const auto button = contentActionButton();
  if (!button) return false;
  button->setImage(infoItemActionImage());
  return true;
}

bool VLTInfoViewController::updateTitleButton() {
  const auto button = contentTitleButton();
  if (!button) return false;
  button->setAttributedTitle(infoItemTitle());
  return true;
}

bool VLTInfoViewController::clickedActionButton(NSObject*) {
  return launchApplication(VLBundleIdentifier_iTunes);
}

}  // namespace virelune
