#include "extensions/login_items.h"

#include "extensions/application_paths.h"
#include "extensions/collections.h"
#include "platform/application/bundle.h"
#include "platform/foundation/text.h"
#include "platform/platform.h"
#include "widget/constants.h"

using platform::NSBundle;

namespace virelune {
namespace {

/// The index of the first login item with a path; none when no item has it.
std::optional<std::int64_t> indexOfLoginItem(const AESystemEventsApplication& application,
                                             const std::string& path) {
  const auto items = application.loginItems();
  const std::int64_t count = items.count();
  for (std::int64_t index = 0; index < count; ++index) {
    const auto itemPath = items.objectAtIndex(index)->path();
    if (itemPath && platform::caseInsensitiveEqual(*itemPath, path)) return index;
  }
  return std::nullopt;
}

}  // namespace

std::optional<std::string> AESystemEventsLoginItem::path() const {
  return propertyWithCode(platform::system_events::path)->stringValue();
}

platform::SBElementArray<AESystemEventsLoginItem> AESystemEventsApplication::loginItems() const {
  return {std::static_pointer_cast<const SBObject>(shared_from_this()),
          platform::system_events::loginItemClass};
}

std::optional<std::string> vl_bundleIdentifier(const AESystemEventsLoginItem& item) {
  const auto path = item.path();
  if (!path || path->empty()) return std::nullopt;
  const auto bundle = NSBundle::bundleWithPath(*path, {});
  return bundle != nullptr ? bundle->bundleIdentifier() : std::nullopt;
}

std::shared_ptr<AESystemEventsApplication> vl_SystemEventsApplication() {
  if (platform::current().scripting == nullptr) return nullptr;
  return platform::make<AESystemEventsApplication>(VLBundleIdentifier_SystemEvents);
}

bool vl_addLoginItemWithPath_hidden(const std::string& path, bool hidden) {
  const auto application = vl_SystemEventsApplication();
  if (path.empty() || application == nullptr) return false;
  platform::Dictionary properties;
  vl_setObject_forKey(properties, path, "path");
  vl_setObject_forKey(properties, hidden, "hidden");
  return application->loginItems().addObject(std::move(properties));
}

bool vl_removeLoginItemWithPath(const std::string& path) {
  const auto application = vl_SystemEventsApplication();
  if (path.empty() || application == nullptr) return false;
  const auto index = indexOfLoginItem(*application, path);
  if (!index) return false;
  application->loginItems().removeObjectAtIndex(*index);
  return true;
}

bool vl_hasLoginItemWithPath(const std::string& path) {
  const auto application = vl_SystemEventsApplication();
  return !path.empty() && application != nullptr && indexOfLoginItem(*application, path);
}

bool vl_setLaunchingAtLogin(bool launching) {
  if (vl_isLaunchingAtLogin() == launching) return true;
  const auto path = vl_path();
  if (!path) return false;
  if (launching) {
    vl_addLoginItemWithPath_hidden(*path, true);
  } else {
    vl_removeLoginItemWithPath(*path);
  }
  return true;
}

bool vl_isLaunchingAtLogin() {
  const auto path = vl_path();
  return path && vl_hasLoginItemWithPath(*path);
}

}  // namespace virelune
