#include "widget/view_controller.h"

#include "controls/view.h"
#include "extensions/notifications.h"
#include "platform/foundation/text.h"
#include "platform/platform.h"
#include "widget/constants.h"

namespace virelune {

using platform::NSNotification;
using platform::NSWorkspace;

VLViewController::~VLViewController() {
  stopDistributedNotificationObserver();
  stopNotificationObserver();
}

bool VLViewController::init() {
  if (!NSViewController::init()) return false;
  prepare();
  return true;
}

void VLViewController::viewWillAppear() {
  NSViewController::viewWillAppear();
  startDistributedNotificationObserver();
  startNotificationObserver();
  update(this);
}

void VLViewController::viewWillDisappear() {
  stopDistributedNotificationObserver();
  stopNotificationObserver();
  NSViewController::viewWillDisappear();
}

// Building

bool VLViewController::prepare() {
  prepareView();
  prepareViewBackgroundColor();
  return true;
}

bool VLViewController::prepareView() {
  auto view = preparedView();
  if (!view) return false;
  setView(std::move(view));
  return true;
}

bool VLViewController::prepareViewBackgroundColor() {
  const auto view = std::dynamic_pointer_cast<VLView>(this->view());
  if (!view) return false;
  view->setBackgroundColor(preparedViewBackgroundColor());
  return true;
}

std::shared_ptr<platform::NSView> VLViewController::preparedView() {
  return platform::make<VLView>(preparedViewFrame());
}

platform::NSRect VLViewController::preparedViewFrame() {
  return platform::NSMakeRect(0, 0, 320, 40);
}

platform::NSColor VLViewController::preparedViewBackgroundColor() {
  return platform::NSColor::clearColor();
}

bool VLViewController::update(platform::NSObject*) { return true; }

// The player's process

bool VLViewController::startNotificationObserver() {
  stopNotificationObserver();
  NSWorkspace* workspace = NSWorkspace::sharedWorkspace();
  if (workspace == nullptr) return false;
  for (const char* name : {platform::NSWorkspaceDidTerminateApplicationNotification,
                           platform::NSWorkspaceDidLaunchApplicationNotification}) {
    workspace->notificationCenter().addObserver(
        this, &VLViewController::iTunesDidTerminateOrLaunchWithNotification, name);
  }
  return true;
}

bool VLViewController::stopNotificationObserver() {
  NSWorkspace* workspace = NSWorkspace::sharedWorkspace();
  if (workspace == nullptr) return false;
  workspace->notificationCenter().removeObserver(this);
  return true;
}

bool VLViewController::iTunesDidTerminateOrLaunchWithNotification(
    const NSNotification* notification) {
  if (notification == nullptr) return false;
  const auto identifier = vl_userInfoObjectForKey_withClass<std::string>(
      notification, platform::NSApplicationBundleIdentifierKey);
  if (!identifier || identifier->empty()) return false;
  if (!platform::caseInsensitiveEqual(*identifier, VLBundleIdentifier_iTunes)) return false;
  update(this);
  return true;
}

// The player's word

bool VLViewController::startDistributedNotificationObserver() {
  stopDistributedNotificationObserver();
  platform::current().distributedCenter->addObserver(
      this, &VLViewController::iTunesPlayerInfoDidChangeWithNotification,
      VLDistributedNotificationName_PlayerInfo);
  return true;
}

bool VLViewController::stopDistributedNotificationObserver() {
  platform::current().distributedCenter->removeObserver(this);
  return true;
}

bool VLViewController::iTunesPlayerInfoDidChangeWithNotification(const NSNotification*) {
  update(this);
  return true;
}

}  // namespace virelune
