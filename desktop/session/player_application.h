// The application behind the player's bundle identifier, as the workspace sees it.
#pragma once

#include <memory>
#include <optional>
#include <string>

namespace desktop {

/// Narrow, so that a player on the bus and the built-in one are the same to the workspace.
class PlayerApplication {
 public:
  virtual ~PlayerApplication() = default;
  virtual bool isRunning() = 0;
  /// The path that stands for the installed application (a desktop entry, whose icon is the
  /// application's); none when none is known.
  virtual std::optional<std::string> applicationPath() = 0;
  /// Brings the running player to the front, or starts it. Never waits.
  virtual void launch() = 0;
};

}  // namespace desktop
