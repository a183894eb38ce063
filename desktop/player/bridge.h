// The bridge to the music player: answers the scripting requests to it from a player on the
// session bus that speaks MPRIS2 (the MPRIS D-Bus interface, version 2.2).
#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QString>
#include <QtCore/QTimer>
#include <QtDBus/QDBusConnection>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/covers/covers.h"
#include "desktop/player/controls.h"
#include "desktop/player/followed_player.h"
#include "desktop/player/library_writer.h"
#include "desktop/player/marks_signal.h"
#include "desktop/player/registry.h"
#include "desktop/ratings/moved_files.h"
#include "desktop/ratings/read_ahead.h"
#include "desktop/ratings/store.h"
#include "desktop/session/player_application.h"
#include "platform/application/scripting.h"

namespace desktop {

/// A player found on the bus.
struct PlayerListing {
  std::string name;          ///< bus name without "org.mpris.MediaPlayer2."
  std::string identity;      ///< name to show; may be empty
  std::string desktopEntry;  ///< its identifier; empty when the player does not tell
  std::string status;        ///< "Playing", "Paused", "Stopped"; empty when it does not answer
};

/// Follows one player at a time: the one that was named, else the one that plays, else the one
/// heard from last. Changes are announced as the player's notification on the platform's
/// distributed centre, coming and going through the shared workspace, twenty times a second at
/// most. A player that does not answer in time is asked again without waiting, and meanwhile
/// answers nothing. Main thread only.
class PlayerBridge final : public platform::ScriptingTransport,
                           public PlayerApplication,
                           public PlayerControls {
 public:
  struct Options {
    std::string playerName = {};      ///< see PlayerRegistry; empty: whichever plays
    std::string lastPlayer = {};      ///< the desktop entry of the one that was followed before
    RatingsStore* ratings = nullptr;  ///< null: ratings come from the player alone
    bool writesLibraries = true;      ///< ratings go on into the players' own libraries
    platform::DispatchQueue* coverReaders = nullptr;  ///< see Covers
    platform::DispatchQueue* marksReader = nullptr;   ///< see ReadAhead; null: none is needed
    std::function<void()> heard = {};  ///< called when there is something new with the player
    PlayerRegistry::Watch watch = PlayerRegistry::Watch::always;
  };

  /// The players on the bus, in the order of their names. Waits a quarter of a second at most.
  static std::vector<PlayerListing> listPlayers(const QDBusConnection& bus);

  /// Looks for players at once, waiting a quarter of a second at most for their answers.
  PlayerBridge(const QDBusConnection& bus, const Options& options);

  /// Follows this player while it is there; see Options.
  void follow(const std::string& playerName);
  /// See Options.
  void setWritesLibraries(bool writes);
  bool follows(const std::string& playerName) const;  ///< true while that is the one
  /// True while a rating is on its way into a player's library.
  bool isWriting() const { return library_ && library_->isWriting(); }
  bool isPlaying() { return isRunning() && registry_.chosen()->isPlaying(); }

  // Scripting.
  /// None for any other application.
  std::optional<platform::ScriptingReply> send(const platform::ScriptingRequest& request) override;

  // Controls.
  std::optional<PlayerReport> report() override;
  std::optional<PlayerGlance> glance() override;
  double position() override;
  bool can(PlayerCommand command) override;
  bool command(PlayerCommand command) override;
  bool seek(double seconds) override;
  bool setVolume(double volume) override;

  // The application.
  /// True while the chosen player owns its name on the bus, whether or not it answers.
  bool isRunning() override { return registry_.chosen() != nullptr; }
  /// As the player tells it; else the name that it has on the bus.
  std::string desktopEntry() override { return lastDesktopEntry_.toStdString(); }
  bool raise() override;

 private:
  void rememberDesktopEntry();
  FollowedPlayer followed(PlayerMirror& chosen);

  // Announcing.
  /// With news for the panel, or with details alone.
  void scheduleAnnouncement(bool isNews = true);
  void announce();
  /// False while a worker reads what the store has of the track, which is announced afterwards.
  bool hasReadAhead();

  QDBusConnection bus_;
  std::optional<MarksSignal> marksSignal_;  ///< none where nothing is watched
  PlayerRegistry registry_;
  Covers covers_;
  RatingsStore* const ratings_;
  std::optional<MovedFiles> moved_;  ///< none without ratings
  std::optional<ReadAhead> readAhead_;
  std::unique_ptr<LibraryWriter> library_;  ///< null when libraries are not written
  QString lastDesktopEntry_;                ///< of the player that was followed last

  QTimer announcement_;
  QElapsedTimer sinceAnnouncement_;
  bool hasNews_ = false;     ///< for the next announcement
  bool wasRunning_ = false;  ///< what was announced last
};

}  // namespace desktop
