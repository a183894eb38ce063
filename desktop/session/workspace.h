// The workspace on the Linux desktop: the installed applications, and the user's applications for
// addresses.
#pragma once

#include <QtCore/QObject>
#include <memory>

#include "desktop/session/installed_applications.h"
#include "desktop/session/player_application.h"
#include "platform/application/workspace.h"

namespace desktop {

/// Bundle identifiers are identifiers of desktop entries; for the player's there is the player.
/// Needs a QGuiApplication. The main thread's, but for openURL().
class DesktopWorkspace final : public platform::WorkspaceBackend {
 public:
  /// The player may be null: then none runs.
  explicit DesktopWorkspace(PlayerApplication* player) : player_(player) {}

  /// Only the player is told to run; of other applications nothing is known.
  platform::ObjectArray runningApplications(const std::string& bundleIdentifier) override;
  /// The path of a desktop entry. The player's is that of the one that runs, else of the one that
  /// was followed last or named, else of the user's player for audio files, else of any player.
  std::optional<std::string> applicationPath(const std::string& bundleIdentifier) override;
  std::shared_ptr<platform::NSImage> icon(const std::string& path) override;
  void launchApplication(const std::string& bundleIdentifier) override;
  /// Web and mail addresses open in the user's applications for them. A store link opens in the
  /// application that is registered for it, else in the web browser. Others are not opened.
  void openURL(const platform::URL& url) override;

 private:
  InstalledApplications& applications();
  std::optional<std::string> playerPath();
  void open(const platform::URL& url);

  PlayerApplication* const player_;
  std::unique_ptr<InstalledApplications> applications_;  // made when it is first asked
  QObject mainThread_;                                   // what is posted here goes with it
};

}  // namespace desktop
