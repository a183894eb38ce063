#include "desktop/session/player_application.h"

#include "platform/application/player_dictionary.h"
#include "platform/foundation/text.h"

namespace desktop {

bool isPlayer(const std::string& bundleIdentifier) {
  return platform::caseInsensitiveEqual(bundleIdentifier, platform::player::bundleIdentifier);
}

platform::ObjectArray runningInstances(PlayerApplication* player,
                                       const std::string& bundleIdentifier) {
  if (!isPlayer(bundleIdentifier) || player == nullptr || !player->isRunning()) return {};
  return {
      platform::make<platform::NSRunningApplication>(platform::player::bundleIdentifier, false)};
}

}  // namespace desktop
