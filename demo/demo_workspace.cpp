#include "demo/demo_workspace.h"

#include "platform/application/player_dictionary.h"
#include "platform/foundation/text.h"

namespace demo {

namespace {

// It is part of this program, so there is no file of its own; the name only has to be told apart.
constexpr const char* playerPath = "demo-player:";

bool isPlayer(const std::string& bundleIdentifier) {
  return platform::caseInsensitiveEqual(bundleIdentifier, platform::player::bundleIdentifier);
}

}  // namespace

platform::ObjectArray DemoWorkspace::runningApplications(const std::string& bundleIdentifier) {
  if (isPlayer(bundleIdentifier)) return player_.runningApplications(bundleIdentifier);
  return others_ != nullptr ? others_->runningApplications(bundleIdentifier)
                            : platform::ObjectArray();
}

std::optional<std::string> DemoWorkspace::applicationPath(const std::string& bundleIdentifier) {
  if (isPlayer(bundleIdentifier)) return playerPath;
  return others_ != nullptr ? others_->applicationPath(bundleIdentifier) : std::nullopt;
}

std::shared_ptr<platform::NSImage> DemoWorkspace::icon(const std::string& path) {
  if (path == playerPath || others_ == nullptr) return nullptr;
  return others_->icon(path);
}

void DemoWorkspace::launchApplication(const std::string& bundleIdentifier) {
  if (!isPlayer(bundleIdentifier)) {
    if (others_ != nullptr) others_->launchApplication(bundleIdentifier);
    return;
  }
  player_.launch(statePlaying);
  player_.play();
}

void DemoWorkspace::openURL(const platform::URL& url) {
  if (others_ != nullptr) others_->openURL(url);
}

}  // namespace demo
