#include "extensions/application_paths.h"

#include "extensions/collections.h"
#include "platform/application/bundle.h"
#include "platform/foundation/file_manager.h"

using platform::NSBundle;
using platform::URL;

namespace virelune {
namespace {

/// The developer team's prefix and the companion application's bundle identifier.
constexpr const char* applicationGroupIdentifier = "VRLN7K2M4Q.org.virelune.Virelune";
constexpr const char* propertyListExtension = "plist";

std::optional<std::string> infoText(const char* key) {
  auto text = vl_objectForKey_withClass<std::string>(vl_info(), key);
  return text && !text->empty() ? text : std::nullopt;
}

std::optional<URL> folderIn(const std::optional<URL>& parent, const std::string& name) {
  return parent ? platform::URLByAppendingPathComponent(*parent, name, true) : std::nullopt;
}

/// The folder, which is there afterwards; none when it cannot be made.
std::optional<URL> onDemand(std::optional<URL> folder) {
  if (!folder) return std::nullopt;
  const bool isThere =
      platform::checkResourceIsReachable(*folder) || platform::createDirectoryAtURL(*folder);
  return isThere ? folder : std::nullopt;
}

/// Asks for the folder only when there is a name, so that an empty one makes nothing.
std::optional<URL> itemIn(std::optional<URL> (*folder)(), const std::string& name) {
  if (name.empty()) return std::nullopt;
  const auto parent = folder();
  return parent ? platform::URLByAppendingPathComponent(*parent, name, false) : std::nullopt;
}

std::optional<URL> asPropertyList(const std::optional<URL>& item) {
  return item ? platform::URLByAppendingPathExtension(*item, propertyListExtension) : std::nullopt;
}

}  // namespace

// Identity

const platform::Dictionary* vl_info() {
  const NSBundle* bundle = NSBundle::mainBundle();
  if (bundle == nullptr || bundle->infoDictionary().empty()) return nullptr;
  return &bundle->infoDictionary();
}

std::optional<std::string> vl_bundleIdentifier() { return infoText("CFBundleIdentifier"); }
std::optional<std::string> vl_version() { return infoText("CFBundleShortVersionString"); }
std::optional<std::string> vl_name() { return infoText("CFBundleName"); }

std::optional<URL> vl_URL() {
  const NSBundle* bundle = NSBundle::mainBundle();
  return bundle != nullptr ? URL::fileURLWithPath(bundle->bundlePath()) : std::nullopt;
}

std::optional<std::string> vl_path() {
  const auto url = vl_URL();
  return url ? url->filePath() : std::nullopt;
}

// Folders

std::optional<URL> vl_applicationSupportDirectoryURLForApp() {
  const auto container =
      platform::containerURLForSecurityApplicationGroupIdentifier(applicationGroupIdentifier);
  return folderIn(folderIn(container, "Library"), "Application Support");
}

std::optional<URL> vl_applicationSupportDirectoryURLForVersion() {
  const auto version = vl_version();
  if (!version) return std::nullopt;
  return onDemand(folderIn(vl_applicationSupportDirectoryURLForApp(), *version));
}

std::optional<URL> vl_applicationSupportDirectoryURLForVersionWithItem(const std::string& name) {
  const auto version = vl_version();
  if (name.empty() || !version) return std::nullopt;
  return onDemand(folderIn(folderIn(vl_applicationSupportDirectoryURLForApp(), *version), name));
}

std::optional<URL> vl_applicationPreferencesURL() {
  return vl_applicationSupportDirectoryURLForVersionWithItem("Preferences");
}

std::optional<URL> vl_applicationOrganizerURL() {
  return vl_applicationSupportDirectoryURLForVersionWithItem("Organizer");
}

std::optional<URL> vl_applicationInfoURL() {
  return vl_applicationSupportDirectoryURLForVersionWithItem("Info");
}

// Items

std::optional<URL> vl_applicationPreferencesURLForItemWithName(const std::string& name) {
  return itemIn(vl_applicationPreferencesURL, name);
}

std::optional<URL> vl_applicationOrganizerURLForItemWithName(const std::string& name) {
  return itemIn(vl_applicationOrganizerURL, name);
}

std::optional<URL> vl_applicationInfoURLForItemWithName(const std::string& name) {
  return itemIn(vl_applicationInfoURL, name);
}

std::optional<URL> vl_applicationPreferencesURLForPlistWithName(const std::string& name) {
  return asPropertyList(vl_applicationPreferencesURLForItemWithName(name));
}

std::optional<URL> vl_applicationOrganizerURLForPlistWithName(const std::string& name) {
  return asPropertyList(vl_applicationOrganizerURLForItemWithName(name));
}

std::optional<URL> vl_applicationPreferencesURLForPlistGeneral() {
  return vl_applicationPreferencesURLForPlistWithName("General");
}

}  // namespace virelune
