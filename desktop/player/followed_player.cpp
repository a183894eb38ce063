#include "desktop/player/followed_player.h"

#include <cmath>

#include "platform/application/player_dictionary.h"

namespace desktop {

namespace {

using platform::player::ratedByUser;
using platform::player::ratingComputed;

/// 0 to 100 for 0 to 1.
std::int64_t percent(double rating) { return std::llround(rating * 100); }

}  // namespace

const PlayerSnapshot* FollowedPlayer::now() {
  if (!now_) now_ = mirror_.snapshot();
  return now_->get();
}

platform::FourCharCode FollowedPlayer::state() {
  return now() != nullptr ? now()->state : platform::FourCharCode{};
}

std::optional<platform::PlayerTrack> FollowedPlayer::track() {
  if (now() == nullptr || !now()->hasTrack) return std::nullopt;
  return platform::PlayerTrack{.name = now()->title,
                               .artist = now()->artist,
                               .album = now()->album,
                               .albumArtist = now()->albumArtist,
                               .duration = now()->length,
                               .isStream = now()->isStream()};
}

bool FollowedPlayer::hasArtwork() {
  return now() != nullptr && artwork_.exists(now()->artworkAddress);
}

platform::Data FollowedPlayer::artwork() {
  return now() != nullptr ? artwork_.bytes(now()->artworkAddress) : platform::Data();
}

TrackIdentity FollowedPlayer::identity() {
  if (now() == nullptr) return {};
  return {.address = now()->address.toStdString(),
          .artist = now()->artist,
          .album = now()->album,
          .albumArtist = now()->albumArtist,
          .title = now()->title,
          .length = now()->length};
}

Marks FollowedPlayer::marks(Marked of) {
  if (ratings_ == nullptr) return {};
  return of == Marked::track ? ratings_->trackMarks(identity()) : ratings_->albumMarks(identity());
}

FollowedPlayer::Rating FollowedPlayer::rating(Marked of) {
  const PlayerSnapshot* track = of == Marked::track ? now() : nullptr;
  if (track != nullptr && mirror_.hasWritableRating(*track)) {
    return track->ownRating ? Rating{percent(*track->ownRating), ratedByUser} : Rating{};
  }
  if (const auto rating = marks(of).rating) return {*rating, ratedByUser};
  if (track != nullptr && track->userRating) return {percent(*track->userRating), ratedByUser};
  if (track != nullptr && track->autoRating) return {percent(*track->autoRating), ratingComputed};
  return {};
}

bool FollowedPlayer::setRating(Marked of, std::int64_t rating) {
  const auto value = static_cast<int>(rating);
  if (of == Marked::album) {
    return ratings_ != nullptr && ratings_->setAlbumRating(identity(), value);
  }
  if (now() != nullptr && mirror_.hasWritableRating(*now())) {
    return mirror_.setOwnRating(*now(), value / 100.0);
  }
  return ratings_ != nullptr && ratings_->setTrackRating(identity(), value);
}

bool FollowedPlayer::isLoved(Marked of) { return marks(of).loved.value_or(false); }

bool FollowedPlayer::setLoved(Marked of, bool loved) {
  if (ratings_ == nullptr) return false;
  return of == Marked::track ? ratings_->setTrackLoved(identity(), loved)
                             : ratings_->setAlbumLoved(identity(), loved);
}

}  // namespace desktop
