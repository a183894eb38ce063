#include "desktop/session/workspace.h"

#include "desktop/session/desktop_entries.h"
#include "platform/application/player_dictionary.h"
#include "platform/foundation/text.h"
#include "platform/graphics/graphics.h"
#include "platform/platform.h"

namespace desktop {

namespace {

bool isStoreScheme(const std::string& scheme) { return scheme == "itms" || scheme == "itmss"; }

/// The user's choice of programs for these is known to the desktop, which xdg-open asks.
bool isGeneralScheme(const std::string& scheme) {
  return scheme == "http" || scheme == "https" || scheme == "mailto";
}

}  // namespace

std::vector<std::string> commandForAddress(const platform::URL& url) {
  const std::string scheme = url.scheme();
  std::string address = url.absoluteString();
  if (isStoreScheme(scheme)) {
    if (const auto entry = defaultApplicationForType("x-scheme-handler/" + scheme)) {
      return commandLine(*entry, address);
    }
    address.replace(0, scheme.size(), "https");
  } else if (!isGeneralScheme(scheme)) {
    return {};
  }
  return {"xdg-open", address};
}

bool DesktopWorkspace::isPlayer(const std::string& bundleIdentifier) const {
  return platform::caseInsensitiveEqual(bundleIdentifier, platform::player::bundleIdentifier);
}

platform::ObjectArray DesktopWorkspace::runningApplications(const std::string& bundleIdentifier) {
  if (!isPlayer(bundleIdentifier) || player_ == nullptr || !player_->isRunning()) return {};
  return {
      platform::make<platform::NSRunningApplication>(platform::player::bundleIdentifier, false)};
}

std::optional<std::string> DesktopWorkspace::applicationPath(const std::string& bundleIdentifier) {
  if (isPlayer(bundleIdentifier)) {
    return player_ != nullptr ? player_->applicationPath() : std::nullopt;
  }
  const auto entry = desktopEntryWithIdentifier(bundleIdentifier);
  return entry ? std::optional(entry->path) : std::nullopt;
}

std::shared_ptr<platform::NSImage> DesktopWorkspace::icon(const std::string& path) {
  platform::Graphics* graphics = platform::current().graphics;
  const auto entry = desktopEntryAtPath(path, {});
  const auto file = entry ? iconPath(*entry) : std::nullopt;
  return file && graphics != nullptr ? graphics->imageAtPath(*file) : nullptr;
}

void DesktopWorkspace::launchApplication(const std::string& bundleIdentifier) {
  if (isPlayer(bundleIdentifier)) {
    if (player_ != nullptr) player_->launch();
    return;
  }
  if (const auto entry = desktopEntryWithIdentifier(bundleIdentifier)) launchDesktopEntry(*entry);
}

void DesktopWorkspace::openURL(const platform::URL& url) { startProgram(commandForAddress(url)); }

}  // namespace desktop
