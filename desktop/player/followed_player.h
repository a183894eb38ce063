// A player on the bus as scripting sees it: what it tells, its cover, and its ratings and love
// marks: its own where they can be set, else what was set last, here or in its library.
#pragma once

#include <memory>
#include <optional>

#include "desktop/covers/covers.h"
#include "desktop/player/controls.h"
#include "desktop/player/library_writer.h"
#include "desktop/player/mirror.h"
#include "desktop/ratings/moved_files.h"
#include "desktop/ratings/store.h"
#include "platform/application/player_interpreter.h"

namespace desktop {

/// As the store knows tracks.
TrackIdentity identityOf(const PlayerSnapshot& track);

/// Made for one request. Main thread only.
class FollowedPlayer final : public platform::ScriptablePlayer {
 public:
  /// Ratings may be null: then they come from the player alone, and `moved` is null as well.
  /// So may the writer: then libraries are not written to.
  FollowedPlayer(PlayerMirror& mirror, Covers& covers, RatingsStore* ratings, MovedFiles* moved,
                 LibraryWriter* library)
      : mirror_(mirror), covers_(covers), ratings_(ratings), moved_(moved), library_(library) {}

  platform::FourCharCode state() override;
  double position() override { return mirror_.position(); }
  bool seek(double seconds) override { return mirror_.setPosition(seconds); }
  std::optional<platform::PlayerTrack> track() override;
  bool hasArtwork() override;
  platform::Data artwork() override;

  Rating rating(Marked of) override;
  bool setRating(Marked of, std::int64_t rating) override;
  bool isLoved(Marked of) override;
  bool setLoved(Marked of, bool loved) override;

  /// All that it tells, and what it tells without being asked.
  PlayerReport report();
  PlayerGlance glance();

  bool playPause() override { return mirror_.command("PlayPause"); }
  bool nextTrack() override { return mirror_.command("Next"); }
  bool previousTrack() override { return mirror_.command("Previous"); }
  bool activate() override { return mirror_.raise(); }
  /// MPRIS cannot point at a track; the player comes to the front by activate().
  bool reveal() override { return false; }

 private:
  /// What the player tells, asked for once so that a request has to do with one track only; null
  /// when it does not answer.
  const PlayerSnapshot* now();
  /// What its cover is looked for by.
  CoverWanted coverWanted();
  /// See identityOf(); a file that has moved is looked after.
  TrackIdentity identity();
  /// What the store has of the track, asked for once until it is changed; nothing without a store.
  const RatingsStore::Known& known();
  std::optional<int> ratingSaid();
  std::int64_t lastHand(int ours);

  PlayerMirror& mirror_;
  Covers& covers_;
  RatingsStore* const ratings_;
  MovedFiles* const moved_;
  LibraryWriter* const library_;
  std::optional<std::shared_ptr<const PlayerSnapshot>> now_;
  std::optional<RatingsStore::Known> known_;
};

}  // namespace desktop
