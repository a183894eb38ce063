// The part of the player's scripting dictionary that the widget uses. Making an object sends
// nothing; every read, write and command is one request. What cannot be read is the zero value of
// its type, and what cannot be written or commanded is silent.
#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/application/player_dictionary.h"
#include "platform/application/scripting.h"
#include "platform/foundation/data.h"

namespace virelune {

using platform::FourCharCode;

/// States of the player. 0 means that the reply could not be read; it matches none of them.
inline constexpr FourCharCode AEiTunesPlayerStateStopped = platform::player::stateStopped;
inline constexpr FourCharCode AEiTunesPlayerStatePlaying = platform::player::statePlaying;

/// Who gave a track its rating, or its album.
inline constexpr FourCharCode AEiTunesRatingKindUser = platform::player::ratedByUser;
inline constexpr FourCharCode AEiTunesRatingKindComputed = platform::player::ratingComputed;

/// Any object of the player.
class AEiTunesItem : public platform::SBObject {
 public:
  using SBObject::SBObject;

  /// The object that the reference leads to, of its most specific class; null when there is none.
  /// One request.
  std::shared_ptr<AEiTunesItem> get() const;

  std::optional<std::string> name() const;

  /// Shows the item in the player's window.
  void reveal() const;
};

/// A piece of artwork of a track.
class AEiTunesArtwork : public AEiTunesItem {
 public:
  using AEiTunesItem::AEiTunesItem;

  platform::Data rawData() const;  ///< the bytes of an image file
};

/// A track.
class AEiTunesTrack : public AEiTunesItem {
 public:
  using AEiTunesItem::AEiTunesItem;

  // What it is
  std::optional<std::string> artist() const;
  std::optional<std::string> album() const;
  std::optional<std::string> albumArtist() const;
  double duration() const;                  ///< seconds
  std::optional<std::string> time() const;  ///< the length as the player writes it
  platform::SBElementArray<AEiTunesArtwork> artworks() const;

  // What its listener thinks of it. Ratings go from 0 to 100, 20 for each star.
  std::int64_t rating() const;
  void setRating(std::int64_t rating) const;
  FourCharCode ratingKind() const;
  bool loved() const;
  void setLoved(bool loved) const;

  // The same of its album
  std::int64_t albumRating() const;
  void setAlbumRating(std::int64_t rating) const;
  FourCharCode albumRatingKind() const;
  bool albumLoved() const;
  void setAlbumLoved(bool loved) const;
};

/// A track that is a file of the player's library.
class AEiTunesFileTrack : public AEiTunesTrack {
 public:
  using AEiTunesTrack::AEiTunesTrack;
};

/// A track that is a network stream.
class AEiTunesURLTrack : public AEiTunesTrack {
 public:
  using AEiTunesTrack::AEiTunesTrack;
};

/// The player.
class AEiTunesApplication : public platform::SBApplication {
 public:
  using SBApplication::SBApplication;

  /// A new application object for an identifier; null without a scripting transport. Neither
  /// sends a request nor launches the application.
  static std::shared_ptr<AEiTunesApplication> applicationWithBundleIdentifier(
      const std::string& bundleIdentifier);
  /// A new application object for the player; null without a scripting transport.
  static std::shared_ptr<AEiTunesApplication> vl_iTunesApplication();
  /// The reference to the player's current track, whether or not the player runs; null without a
  /// scripting transport.
  static std::shared_ptr<AEiTunesTrack> vl_currentTrack();

  std::shared_ptr<AEiTunesTrack> currentTrack() const;  ///< a reference; sends nothing
  FourCharCode playerState() const;
  double playerPosition() const;  ///< seconds from the start of the current track
  void setPlayerPosition(double seconds) const;

  void playpause() const;
  void nextTrack() const;
  void previousTrack() const;

  // The dictionary's tables, built once on first request from any thread.
  static const std::map<FourCharCode, std::string>& classNamesForCodes();
  static const std::map<std::string, FourCharCode, std::less<>>& codesForPropertyNames();
};

}  // namespace virelune
