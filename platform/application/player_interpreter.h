// Scripting requests to the music player, turned into calls on whatever plays.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "platform/application/scripting.h"
#include "platform/foundation/data.h"

namespace platform {

/// What a player tells of its current track. Empty texts and a length of 0 are unknown.
struct PlayerTrack {
  std::string name;
  std::string artist;
  std::string album;
  std::string albumArtist;
  double duration = 0;    ///< seconds
  bool isStream = false;  ///< a network stream rather than a file
};

/// A player behind the player's scripting dictionary. Main thread only.
class ScriptablePlayer {
 public:
  /// What a rating or a love mark belongs to: the current track, or its album.
  enum class Marked { track, album };
  struct Rating {
    std::int64_t value = 0;  ///< 0 to 100, 20 for each star
    FourCharCode kind{};     ///< who rated; 0 when nobody did
  };

  virtual ~ScriptablePlayer() = default;

  // What it plays; zero values while it does not tell.
  virtual FourCharCode state() = 0;
  virtual double position() = 0;  ///< seconds from the start of the current track
  virtual bool seek(double seconds) = 0;
  virtual std::optional<PlayerTrack> track() = 0;  ///< none when there is no current track
  /// True as well for artwork that is still on its way.
  virtual bool hasArtwork() = 0;
  /// The bytes of an image file; empty when there is none, or none yet.
  virtual Data artwork() = 0;

  // What its listener thinks of it; asked and told only while there is a current track.
  virtual Rating rating(Marked of) = 0;
  virtual bool setRating(Marked of, std::int64_t rating) = 0;
  virtual bool isLoved(Marked of) = 0;
  virtual bool setLoved(Marked of, bool loved) = 0;

  // Commands; these and the setters answer false when nothing came of it.
  virtual bool playPause() = 0;
  virtual bool nextTrack() = 0;
  virtual bool previousTrack() = 0;
  virtual bool activate() = 0;  ///< brings the player to the front
  virtual bool reveal() = 0;    ///< shows the current track in the player's window
};

/// The player's answer to a request. None for a request to another application, for what the
/// dictionary does not know or the player does not have, and for a value that makes no sense.
std::optional<ScriptingReply> interpret(const ScriptingRequest& request, ScriptablePlayer& player);

}  // namespace platform
