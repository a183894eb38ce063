// Love and rating commands on the current track and on its album, with the companion
// application's automatic love rule: while it is on, love and rating are kept in step with each
// other around a threshold. Every step reads the rule and the player afresh. Main thread.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "extensions/collections.h"
#include "platform/foundation/value.h"

namespace virelune {

// The rule, from the companion application's General preferences file

/// The preferences; none when the file cannot be found or read, or holds no entry.
std::optional<platform::Dictionary> vl_generalPreferencesInfo();

/// The value of a key; none when it is missing or of another class.
template <class T>
std::optional<T> vl_generalPreferencesInfoValueForKey_andClass(const std::string& key) {
  const auto info = vl_generalPreferencesInfo();
  return info ? vl_objectForKey_withClass<T>(*info, key) : std::nullopt;
}

/// True when the rule is on.
bool vl_useAutoLovedRating();

/// The threshold, from 0 to 100: a rating of at least this much goes with love.
std::int64_t vl_autoLovedRating();

/// Turns the rule on with a threshold, or off with none. False when the preferences cannot be read
/// or written; what else is in them stays.
bool vl_setAutoLoveRule(std::optional<std::int64_t> threshold);

// Commands. All answer false, and change nothing, without a player to send them to. Ratings are
// limited to 0…100. A command that names an automatic change leaves alone what already fits.

bool vl_toggleTrackLoved();
bool vl_setCurrentTrackLoved(bool loved);
/// Loves the track, or ends it, as its user rating says; false for a stream, which stays as it is.
bool vl_setCurrentTrackAutoLoved();
bool vl_setCurrentTrackRating(std::int64_t rating);
/// Lifts the rating of a loved track to the threshold, lowers that of another one below it; false
/// when the rating already fits.
bool vl_setCurrentTrackAutoRating();

bool vl_toggleAlbumLoved();
bool vl_setCurrentAlbumLoved(bool loved);
/// Loves the album, or ends it, as its user rating says; also for a stream.
bool vl_setCurrentAlbumAutoLoved();
bool vl_setCurrentAlbumRating(std::int64_t rating);
/// Lifts or lowers the album's rating, as for a track.
bool vl_setCurrentAlbumAutoRating();

}  // namespace virelune
