// The workspace on the Linux desktop: desktop entries, and the user's applications for addresses.
#pragma once

#include "desktop/session/player_application.h"
#include "platform/application/workspace.h"

namespace desktop {

/// Bundle identifiers are identifiers of desktop entries; the player's is answered by the player.
class DesktopWorkspace final : public platform::WorkspaceBackend {
 public:
  /// The player may be null: then none runs.
  explicit DesktopWorkspace(PlayerApplication* player) : player_(player) {}

  /// Only the player is told to run; of other applications nothing is known.
  platform::ObjectArray runningApplications(const std::string& bundleIdentifier) override;
  std::optional<std::string> applicationPath(const std::string& bundleIdentifier) override;
  std::shared_ptr<platform::NSImage> icon(const std::string& path) override;
  void launchApplication(const std::string& bundleIdentifier) override;
  /// Web and mail addresses open in the user's applications for them. A store link opens in the
  /// application that is registered for it, else in the web browser.
  void openURL(const platform::URL& url) override;

 private:
  bool isPlayer(const std::string& bundleIdentifier) const;

  PlayerApplication* const player_;
};

/// What is started for an address: the program and its arguments; empty for schemes that are
/// never opened. Reads the registered applications.
std::vector<std::string> commandForAddress(const platform::URL& url);

}  // namespace desktop
