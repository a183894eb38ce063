// Ratings set here on their way into the libraries of players that take them over the bus.
#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "desktop/player/mirror.h"
#include "desktop/player/mpd_server.h"
#include "desktop/ratings/store.h"

namespace desktop {

/// Writes a rating where a player keeps its own and reads it back, never waiting (what would wait
/// is done on a worker); the store's note tells what became of it. Main thread only; the store must
/// outlive the writer.
class LibraryWriter final : public QObject {
 public:
  LibraryWriter(QDBusConnection bus, RatingsStore& store);
  ~LibraryWriter() override;

  /// The name under which the store knows a player: "rhythmbox", "mpv".
  static std::string nameOf(const PlayerMirror& player);

  /// Asks a player what it offers; to be done when it is first followed.
  void meet(const PlayerMirror& player);
  /// True for a player with a library that takes ratings.
  bool takesRatings(const PlayerMirror& player) const { return wayInto(player) != nullptr; }

  /// True while a rating is on its way.
  bool isWriting() const { return !latest_.empty(); }

  /// Sees to it that the library has the rating (0 to 100) of this track, which is the player's
  /// current one. The track is not followed: once another one plays, it is left alone.
  void write(const PlayerMirror& player, const PlayerSnapshot& track, const TrackIdentity& identity,
             int rating);
  /// The same for a rating that could not be written before; not more often than now and then.
  void writeAgain(const PlayerMirror& player, const PlayerSnapshot& track,
                  const TrackIdentity& identity, int rating);

 private:
  struct Way;  ///< into one kind of library
  struct Job;
  using Answered = std::function<void(const QDBusMessage&)>;

  const Way* wayInto(const PlayerMirror& player) const;
  void call(const QDBusMessage& message, Answered answered);
  void send(const Job& job);
  void sendToMpd(const Job& job);
  void sendNextToMpd();
  void answered(LibraryNote::State state);
  void readBack(const Job& job);
  void end(const Job& job, LibraryNote::State state, std::optional<int> found = std::nullopt);
  bool isLatest(const Job& job) const;

  QDBusConnection bus_;
  RatingsStore& store_;
  std::map<QString, bool> hasExtension_;         ///< by owner; false until it has answered
  std::map<std::string, int> latest_;            ///< jobs under way, by the track's key
  std::map<std::string, QElapsedTimer> trials_;  ///< since the last one, by the track's key
  int jobs_ = 0;
  std::list<Job> mpdJobs_;                      ///< the first one is under way
  std::shared_ptr<MpdServer> mpd_;              ///< null before its first rating
  const std::shared_ptr<LibraryWriter*> self_;  ///< what workers hold weakly
};

}  // namespace desktop
