// The player that the widget has to do with: one on the bus, or the demo player in its place.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QTimer>
#include <QtDBus/QDBusConnection>
#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "demo/demo_player.h"
#include "demo/demo_workspace.h"
#include "desktop/player/bridge.h"
#include "desktop/ratings/store.h"
#include "desktop/session/player_application.h"
#include "desktop/session/workspace.h"

namespace desktop {

/// Answers for the one or the other, and changes between them without the widget's starting again:
/// a demo player that stands in for want of another gives way to the first player on the bus that
/// plays. When the bus goes no player can be reached, until there is a bus again.
class PlayerSource final : public QObject,
                           public platform::ScriptingTransport,
                           public platform::WorkspaceBackend,
                           public PlayerApplication,
                           public PlayerControls {
  Q_OBJECT

 public:
  struct Options {
    std::optional<QDBusConnection> bus;  ///< none: the demo player plays, and nothing else
    bool demo = false;                   ///< the demo player plays, whatever is on the bus
    std::string playerName = {};         ///< see PlayerRegistry; empty: whichever plays
    std::string lastPlayer = {};         ///< the desktop entry of the one followed last
    bool demoStandsIn = false;  ///< the demo player plays when none runs and none is installed
    RatingsStore* ratings = nullptr;
    bool writesLibraries = true;
    platform::DispatchQueue* coverReaders = nullptr;  ///< see Covers
    platform::DispatchQueue* marksReader = nullptr;   ///< see PlayerBridge
  };
  explicit PlayerSource(Options options);

  /// Plays from the beginning; null while players on the bus are followed.
  demo::DemoPlayer* demoPlayer() { return demoPlayer_.get(); }
  /// True while a player of this name is followed.
  bool hasPlayer(const std::string& name);
  /// Follows the players on the bus from now on, this one first; empty: whichever plays.
  void followPlayer(const std::string& name);
  /// Those on the bus, in the order of their names; waits a quarter of a second at most.
  std::vector<PlayerListing> players() const;
  bool writesLibraries() const { return writesLibraries_; }
  void setWritesLibraries(bool writes);
  /// Plays the demo player from now on, whatever comes.
  void playDemo();

  // Scripting and workspace, as the player of the moment answers.
  std::optional<platform::ScriptingReply> send(const platform::ScriptingRequest& request) override;
  platform::ObjectArray runningApplications(const std::string& bundleIdentifier) override;
  std::optional<std::string> applicationPath(const std::string& bundleIdentifier) override;
  std::shared_ptr<platform::NSImage> icon(const std::string& path) override;
  void launchApplication(const std::string& bundleIdentifier) override;
  void openURL(const platform::URL& url) override;

  // Controls, likewise.
  std::optional<PlayerReport> report() override;
  std::optional<PlayerGlance> glance() override;
  double position() override;
  bool can(PlayerCommand command) override;
  bool command(PlayerCommand command) override;
  bool seek(double seconds) override;
  bool setVolume(double volume) override;

  // The application on the bus.
  bool isRunning() override { return bridge_ && bridge_->isRunning(); }
  std::string desktopEntry() override { return bridge_ ? bridge_->desktopEntry() : lastPlayer_; }
  bool raise() override { return bridge_ && bridge_->raise(); }

 signals:
  void demoEntered();  ///< the demo player begins to play
  void demoLeft();     ///< the demo player has gone
  void playerHeard();  ///< there may be something new with the player on the bus
  void busReturned(const QDBusConnection& bus);

 private slots:  // called by the bus
  void busLost();

 private:
  void makeBridge();
  void heard();
  void leaveDemo();
  void announce();
  void seekBus();
  platform::WorkspaceBackend& workspace();

  std::optional<QDBusConnection> bus_;
  std::string playerName_;
  std::string lastPlayer_;
  bool demoGivesWay_ = false;
  RatingsStore* const ratings_;
  bool writesLibraries_;
  platform::DispatchQueue* const coverReaders_;
  platform::DispatchQueue* const marksReader_;
  DesktopWorkspace desktop_{this};
  std::unique_ptr<PlayerBridge> bridge_;
  std::unique_ptr<demo::DemoPlayer> demoPlayer_;
  std::unique_ptr<demo::DemoWorkspace> demoWorkspace_;
  QTimer busSeeker_;
  int busCount_ = 0;  ///< connections made after the first
};

}  // namespace desktop
