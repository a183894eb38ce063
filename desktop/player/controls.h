// What can be asked of a player and done with it besides what the widget's panel asks and does.
#pragma once

#include <optional>
#include <string>

#include "platform/application/player_interpreter.h"

namespace desktop {

/// What a player tells of itself and its current track. Empty texts and a length of 0 are unknown.
struct PlayerGlance {
  std::string player = {};    ///< its name on the bus, without what all have in common
  std::string identity = {};  ///< the name to show
  platform::FourCharCode state{};
  std::optional<double> volume = std::nullopt;  ///< 0 to 1 and beyond; none when it has none

  std::optional<platform::PlayerTrack> track =
      std::nullopt;          ///< none when there is no current track
  std::string address = {};  ///< of the track
  std::string artworkAddress = {};
};

/// All that is known of it at one moment, for which the player may be asked for its position, and
/// the ratings store.
struct PlayerReport : PlayerGlance {
  double position = 0;  ///< seconds
  platform::ScriptablePlayer::Rating rating = {};
  platform::ScriptablePlayer::Rating albumRating = {};
  bool isLoved = false;
  bool isAlbumLoved = false;
  /// What became of our rating in the player's library: "written", "pending", "refused" or "none".
  std::string library = "none";
};

enum class PlayerCommand { playPause, play, pause, stop, next, previous, raise };

/// A player that can be told what to do. Everything answers false, or none, without a player or
/// when nothing comes of it. Main thread only.
class PlayerControls {
 public:
  virtual ~PlayerControls() = default;
  virtual std::optional<PlayerReport> report() = 0;
  virtual std::optional<PlayerGlance> glance() = 0;
  virtual double position() = 0;  ///< seconds; 0 when it is not known
  /// False as well for what the player says it cannot do now.
  virtual bool can(PlayerCommand command) = 0;
  virtual bool command(PlayerCommand command) = 0;
  virtual bool seek(double seconds) = 0;  ///< from the start of the current track
  virtual bool setVolume(double volume) = 0;
};

}  // namespace desktop
