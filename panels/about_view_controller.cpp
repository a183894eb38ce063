#include "panels/about_view_controller.h"

#include "extensions/strings.h"
#include "panels/application_item.h"
#include "platform/application/workspace.h"
#include "platform/foundation/url.h"
#include "widget/constants.h"
#include "widget/panel_button.h"

namespace virelune {

using platform::NSAttributedString;
using platform::NSButton;

namespace {

/// Opens an address made of a prefix and a text just as they stand.
bool openAddress(const char* prefix, const std::optional<std::string>& text) {
  if (!text) return false;
  const auto url = platform::URL::fromText(prefix + *text);
  platform::NSWorkspace* workspace = platform::NSWorkspace::sharedWorkspace();
  if (!url || workspace == nullptr) return false;
  workspace->openURL(*url);
  return true;
}

}  // namespace

// Building

bool VLAboutViewController::prepare() {
  VLViewController::prepare();
  prepareActionButton();
  prepareWebButton();
  prepareEmailButton();
  return true;
}

bool VLAboutViewController::prepareActionButton() {
  return view() && installButton(preparedActionButton());
}

bool VLAboutViewController::prepareWebButton() {
  return view() && installButton(preparedWebButton());
}

bool VLAboutViewController::prepareEmailButton() {
  return view() && installButton(preparedEmailButton());
}

bool VLAboutViewController::installButton(const std::shared_ptr<NSButton>& button) {
  if (!button) return false;
  view()->addSubview(button);
  return true;
}

std::shared_ptr<NSButton> VLAboutViewController::preparedActionButton() {
  auto image = infoItemActionImage();
  if (!image) return nullptr;
  auto button = platform::make<NSButton>(preparedActionButtonFrame());
  configurePanelButton(*button, std::move(image), shared_from_this(),
                       &VLAboutViewController::clickedActionButton);
  return button;
}

std::shared_ptr<NSButton> VLAboutViewController::preparedWebButton() {
  auto title = preparedWebButtonAttributedTitle();
  if (!title) return nullptr;
  return preparedTextButton(preparedWebButtonFrame(), std::move(*title), shared_from_this(),
                            &VLAboutViewController::clickedWebButton);
}

std::shared_ptr<NSButton> VLAboutViewController::preparedEmailButton() {
  auto title = preparedEmailButtonAttributedTitle();
  if (!title) return nullptr;
  return preparedTextButton(preparedEmailButtonFrame(), std::move(*title), shared_from_this(),
                            &VLAboutViewController::clickedEmailButton);
}

std::optional<NSAttributedString> VLAboutViewController::preparedWebButtonAttributedTitle() const {
  return titleWithText(infoItemWeb(), 16);
}

std::optional<NSAttributedString> VLAboutViewController::preparedEmailButtonAttributedTitle()
    const {
  return titleWithText(infoItemEmail(), 12);
}

platform::NSRect VLAboutViewController::preparedViewFrame() {
  platform::NSRect frame = VLViewController::preparedViewFrame();
  frame.size.height = 64;
  return frame;
}

platform::NSRect VLAboutViewController::preparedActionButtonFrame() const {
  return platform::NSMakeRect(10, 13, 40, 40);
}

platform::NSRect VLAboutViewController::preparedWebButtonFrame() const {
  return platform::NSMakeRect(60, 34, 240, 20);
}

platform::NSRect VLAboutViewController::preparedEmailButtonFrame() const {
  return platform::NSMakeRect(60, 14, 240, 20);
}

// Values

std::optional<std::string> VLAboutViewController::infoItemWeb() const {
  return vl_localizedString("0000.0001");
}

std::optional<std::string> VLAboutViewController::infoItemEmail() const {
  return vl_localizedString("0000.0002");
}

std::shared_ptr<platform::NSImage> VLAboutViewController::infoItemActionImage() const {
  return applicationImage(VLBundleIdentifier_Virelune);
}

// Clicks

bool VLAboutViewController::clickedActionButton(NSObject*) {
  return launchApplication(VLBundleIdentifier_Virelune);
}

bool VLAboutViewController::clickedWebButton(NSObject*) {
  return openAddress("http://", infoItemWeb());
}

bool VLAboutViewController::clickedEmailButton(NSObject*) {
  return openAddress("mailto:", infoItemEmail());
}

}  // namespace virelune
