// Launch at login, through the login items of the System Events application.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/application/scripting.h"

namespace virelune {

/// A program that is started at login.
class AESystemEventsLoginItem : public platform::SBObject {
 public:
  using SBObject::SBObject;

  std::optional<std::string> path() const;  ///< one request
};

/// The System Events application.
class AESystemEventsApplication : public platform::SBApplication {
 public:
  using SBApplication::SBApplication;

  /// The list in its own order; sends nothing.
  platform::SBElementArray<AESystemEventsLoginItem> loginItems() const;
};

/// The identifier of the bundle at the item's path; none when there is no bundle.
std::optional<std::string> vl_bundleIdentifier(const AESystemEventsLoginItem& item);

/// A new reference to System Events; null without a scripting transport. Sends nothing.
std::shared_ptr<AESystemEventsApplication> vl_SystemEventsApplication();

// Login items by path, compared without regard to case. All answer false for an empty path and
// when System Events does not answer.

/// Appends a login item, which starts hidden or not; true once System Events took the request.
bool vl_addLoginItemWithPath_hidden(const std::string& path, bool hidden);
/// Removes the first login item with the path; false when there is none.
bool vl_removeLoginItemWithPath(const std::string& path);
bool vl_hasLoginItemWithPath(const std::string& path);

/// Switches whether the running program is started, hidden, at login. True once tried, whatever
/// came of it; false without a main bundle. Nothing is sent when it is so already.
bool vl_setLaunchingAtLogin(bool launching);
bool vl_isLaunchingAtLogin();

}  // namespace virelune
