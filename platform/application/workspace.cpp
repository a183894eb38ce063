#include "platform/application/workspace.h"

#include "platform/platform.h"

namespace platform {

NSWorkspace* NSWorkspace::sharedWorkspace() { return current().workspace; }

std::optional<std::string> NSWorkspace::absolutePathForAppBundleWithIdentifier(
    const std::string& identifier) {
  return backend_.applicationPath(identifier);
}

std::shared_ptr<NSImage> NSWorkspace::iconForFile(const std::string& path) {
  return backend_.icon(path);
}

bool NSWorkspace::launchAppWithBundleIdentifier(const std::string& identifier, unsigned) {
  backend_.launchApplication(identifier);
  return true;
}

bool NSWorkspace::openURL(const URL& url) {
  backend_.openURL(url);
  return true;
}

void NSWorkspace::postDidLaunch(const std::string& bundleIdentifier) {
  post(NSWorkspaceDidLaunchApplicationNotification, bundleIdentifier);
}

void NSWorkspace::postDidTerminate(const std::string& bundleIdentifier) {
  post(NSWorkspaceDidTerminateApplicationNotification, bundleIdentifier);
}

void NSWorkspace::post(const char* name, const std::string& bundleIdentifier) {
  notificationCenter_.postNotification(NSNotification(
      name, nullptr, Dictionary{{NSApplicationBundleIdentifierKey, Value(bundleIdentifier)}}));
}

ObjectArray runningApplicationsWithBundleIdentifier(const std::string& bundleIdentifier) {
  NSWorkspace* workspace = NSWorkspace::sharedWorkspace();
  return workspace != nullptr ? workspace->backend_.runningApplications(bundleIdentifier)
                              : ObjectArray();
}

}  // namespace platform
