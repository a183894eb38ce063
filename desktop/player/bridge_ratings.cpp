// Ratings and love marks of what the player plays: its own where it keeps one, else ours, else
// what it knows from its library.
#include <cmath>

#include "desktop/player/bridge.h"

namespace desktop {

namespace {

using platform::code;

constexpr platform::FourCharCode ratedByUser = code("kRtU");
constexpr platform::FourCharCode ratingComputed = code("kRtC");

/// 0 to 100 for 0 to 1.
std::int64_t percent(double rating) { return std::llround(rating * 100); }

}  // namespace

TrackIdentity PlayerBridge::identityOf(const PlayerSnapshot& track) {
  return {.address = track.address.toStdString(),
          .artist = track.artist,
          .album = track.album,
          .albumArtist = track.albumArtist,
          .title = track.title,
          .length = track.length};
}

Marks PlayerBridge::trackMarks(const PlayerSnapshot& track) {
  return ratings_ != nullptr ? ratings_->trackMarks(identityOf(track)) : Marks();
}

Marks PlayerBridge::albumMarks(const PlayerSnapshot& track) {
  return ratings_ != nullptr ? ratings_->albumMarks(identityOf(track)) : Marks();
}

PlayerBridge::Rating PlayerBridge::trackRating(PlayerMirror& player, const PlayerSnapshot& track) {
  if (player.hasWritableRating(track)) {
    return track.ownRating ? Rating{percent(*track.ownRating), ratedByUser} : Rating{};
  }
  if (const auto rating = trackMarks(track).rating) return {*rating, ratedByUser};
  if (track.userRating) return {percent(*track.userRating), ratedByUser};
  if (track.autoRating) return {percent(*track.autoRating), ratingComputed};
  return {};
}

PlayerBridge::Rating PlayerBridge::albumRating(const PlayerSnapshot& track) {
  const auto rating = albumMarks(track).rating;
  return rating ? Rating{*rating, ratedByUser} : Rating{};
}

bool PlayerBridge::setTrackRating(PlayerMirror& player, const PlayerSnapshot& track, int rating) {
  if (player.hasWritableRating(track)) return player.setOwnRating(track, rating / 100.0);
  return ratings_ != nullptr && ratings_->setTrackRating(identityOf(track), rating);
}

}  // namespace desktop
