// Who the running program is, and the places in the storage that it shares with the companion
// application.
#pragma once

#include <optional>
#include <string>

#include "platform/foundation/url.h"
#include "platform/foundation/value.h"

namespace virelune {

// Identity, from the main bundle

/// The information dictionary; null without a main bundle or when it is empty.
const platform::Dictionary* vl_info();
// The entries "CFBundleIdentifier", "CFBundleShortVersionString" and "CFBundleName"; none when
// they are missing, empty or not texts.
std::optional<std::string> vl_bundleIdentifier();
std::optional<std::string> vl_version();
std::optional<std::string> vl_name();
/// The main bundle's location, and its path in the file system.
std::optional<platform::URL> vl_URL();
std::optional<std::string> vl_path();

// Shared storage: <group container>/Library/Application Support/<version>/<folder>/<item>. Each
// short version string has its own tree. What names the version folder or something below it
// makes that folder when it is missing, never the file; none when it cannot be made, and without
// a version or a group container.

/// "Application Support" itself; it is not made.
std::optional<platform::URL> vl_applicationSupportDirectoryURLForApp();
std::optional<platform::URL> vl_applicationSupportDirectoryURLForVersion();
/// A folder of the version; none for an empty name.
std::optional<platform::URL> vl_applicationSupportDirectoryURLForVersionWithItem(
    const std::string& name);
std::optional<platform::URL> vl_applicationPreferencesURL();
std::optional<platform::URL> vl_applicationOrganizerURL();
std::optional<platform::URL> vl_applicationInfoURL();

// An item in one of these folders; none for an empty name. Property lists get the extension
// "plist".
std::optional<platform::URL> vl_applicationPreferencesURLForItemWithName(const std::string& name);
std::optional<platform::URL> vl_applicationOrganizerURLForItemWithName(const std::string& name);
std::optional<platform::URL> vl_applicationInfoURLForItemWithName(const std::string& name);
std::optional<platform::URL> vl_applicationPreferencesURLForPlistWithName(const std::string& name);
std::optional<platform::URL> vl_applicationOrganizerURLForPlistWithName(const std::string& name);

/// The companion application's General preferences.
std::optional<platform::URL> vl_applicationPreferencesURLForPlistGeneral();

}  // namespace virelune
