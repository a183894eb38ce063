// The workspace: which applications run and are installed, launching them, opening addresses.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/image.h"
#include "platform/foundation/object.h"
#include "platform/foundation/url.h"
#include "platform/loop/notification.h"

namespace platform {

// Posted to the workspace's notification centre; user info holds the bundle identifier under
// "NSApplicationBundleIdentifier".
inline constexpr const char* NSWorkspaceDidLaunchApplicationNotification =
    "NSWorkspaceDidLaunchApplicationNotification";
inline constexpr const char* NSWorkspaceDidTerminateApplicationNotification =
    "NSWorkspaceDidTerminateApplicationNotification";
inline constexpr const char* NSApplicationBundleIdentifierKey = "NSApplicationBundleIdentifier";

inline constexpr unsigned NSWorkspaceLaunchAsync = 0x10000;

/// A running application, as it was when it was asked for.
class NSRunningApplication : public NSObject {
 public:
  NSRunningApplication(std::string bundleIdentifier, bool terminated)
      : bundleIdentifier_(std::move(bundleIdentifier)), terminated_(terminated) {}
  const std::string& bundleIdentifier() const { return bundleIdentifier_; }
  bool isTerminated() const { return terminated_; }

 private:
  std::string bundleIdentifier_;
  bool terminated_;
};

/// Objects of any class in one list.
using ObjectArray = std::vector<std::shared_ptr<NSObject>>;

/// What the desktop knows about applications. Launching and opening never wait for the outcome.
class WorkspaceBackend {
 public:
  virtual ~WorkspaceBackend() = default;
  virtual ObjectArray runningApplications(const std::string& bundleIdentifier) = 0;
  /// The path of an installed application; none when it is not installed.
  virtual std::optional<std::string> applicationPath(const std::string& bundleIdentifier) = 0;
  /// The icon of the application at a path; null when it has none.
  virtual std::shared_ptr<NSImage> icon(const std::string& path) = 0;
  virtual void launchApplication(const std::string& bundleIdentifier) = 0;
  /// Opens an address with the application registered for its scheme. Any thread.
  virtual void openURL(const URL& url) = 0;
};

/// The shared workspace, on top of a backend.
class NSWorkspace {
 public:
  explicit NSWorkspace(WorkspaceBackend& backend) : backend_(backend) {}

  /// Null when there is none.
  static NSWorkspace* sharedWorkspace();

  NSNotificationCenter& notificationCenter() { return notificationCenter_; }
  std::optional<std::string> absolutePathForAppBundleWithIdentifier(const std::string& identifier);
  std::shared_ptr<NSImage> iconForFile(const std::string& path);
  /// True once asked.
  bool launchAppWithBundleIdentifier(const std::string& identifier, unsigned options);
  /// True once asked.
  bool openURL(const URL& url);

  /// Tells the observers that an application was launched or has terminated.
  void postDidLaunch(const std::string& bundleIdentifier);
  void postDidTerminate(const std::string& bundleIdentifier);

 private:
  friend ObjectArray runningApplicationsWithBundleIdentifier(const std::string&);
  void post(const char* name, const std::string& bundleIdentifier);

  WorkspaceBackend& backend_;
  NSNotificationCenter notificationCenter_;
};

/// The running applications with an identifier (compared ignoring case); empty when none runs.
ObjectArray runningApplicationsWithBundleIdentifier(const std::string& bundleIdentifier);

}  // namespace platform
