// The application behind the player's bundle identifier, as the workspace sees it.
#pragma once

#include <string>

#include "platform/application/workspace.h"

namespace desktop {

/// Narrow, so that a player on the bus and the built-in one are the same to the workspace.
class PlayerApplication {
 public:
  virtual ~PlayerApplication() = default;
  virtual bool isRunning() = 0;
  /// The identifier of its desktop entry: of the player that runs, else of the one that was
  /// followed last or named; empty when none is known.
  virtual std::string desktopEntry() = 0;
  /// Brings the running player to the front; false when none runs. Never waits.
  virtual bool raise() = 0;
};

/// True for the player's bundle identifier.
bool isPlayer(const std::string& bundleIdentifier);

/// What the workspace tells to run under a bundle identifier: the player, and nothing else. The
/// player may be null.
platform::ObjectArray runningInstances(PlayerApplication* player,
                                       const std::string& bundleIdentifier);

}  // namespace desktop
