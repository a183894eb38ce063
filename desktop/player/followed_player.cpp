#include "desktop/player/followed_player.h"

#include <array>
#include <cmath>
#include <cstdlib>

#include "platform/application/player_dictionary.h"

namespace desktop {

namespace {

using platform::player::ratedByUser;
using platform::player::ratingComputed;

/// 0 to 100 for 0 to 1.
std::int64_t percent(double rating) { return std::llround(rating * 100); }

}  // namespace

TrackIdentity identityOf(const PlayerSnapshot& track) {
  return {.address = track.address.toStdString(),
          .artist = track.artist,
          .album = track.album,
          .albumArtist = track.albumArtist,
          .title = track.title,
          .length = track.length};
}

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

bool FollowedPlayer::hasArtwork() { return now() != nullptr && covers_.exists(coverWanted()); }

platform::Data FollowedPlayer::artwork() {
  return now() != nullptr ? covers_.bytes(coverWanted()) : platform::Data();
}

CoverWanted FollowedPlayer::coverWanted() {
  const std::string address = now()->address.toStdString();
  const std::string path = address.starts_with('/') ? address : pathOfFileAddress(address);
  return {.address = now()->artworkAddress,
          .path = path.starts_with('/') ? path : std::string(),
          .album = now()->album};
}

TrackIdentity FollowedPlayer::identity() {
  if (now() == nullptr) return {};
  TrackIdentity identity = identityOf(*now());
  if (moved_ != nullptr) moved_->heard(identity);
  return identity;
}

const RatingsStore::Known& FollowedPlayer::known() {
  if (!known_) {
    known_ = ratings_ != nullptr ? ratings_->known(identity(), LibraryWriter::nameOf(mirror_))
                                 : RatingsStore::Known{};
  }
  return *known_;
}

FollowedPlayer::Rating FollowedPlayer::rating(Marked of) {
  const PlayerSnapshot* track = of == Marked::track ? now() : nullptr;
  if (track != nullptr && mirror_.hasWritableRating(*track)) {
    return track->ownRating ? Rating{percent(*track->ownRating), ratedByUser} : Rating{};
  }
  if (of == Marked::album) {
    const auto rating = known().album.rating;
    return rating ? Rating{*rating, ratedByUser} : Rating{};
  }
  if (track != nullptr && known().track.rating) {
    return {lastHand(*known().track.rating), ratedByUser};
  }
  if (const auto said = ratingSaid()) return {*said, ratedByUser};
  if (track == nullptr) return {};
  if (track->userRating) return {percent(*track->userRating), ratingComputed};
  if (track->autoRating) return {percent(*track->autoRating), ratingComputed};
  return {};
}

/// What the user has rated the track with in the player, 0 to 100; none when that is not known.
std::optional<int> FollowedPlayer::ratingSaid() {
  if (now() == nullptr || !now()->userRating) return std::nullopt;
  // Which it gives to every track that nobody has rated.
  constexpr double quodLibetDefault = 0.5;
  const bool isDefault =
      LibraryWriter::nameOf(mirror_) == "quodlibet" && *now()->userRating == quodLibetDefault;
  return isDefault ? std::nullopt : std::optional(static_cast<int>(percent(*now()->userRating)));
}

/// Of our rating and the player's the one that was given last, which is ours from now on.
std::int64_t FollowedPlayer::lastHand(int ours) {
  constexpr int halfStar = 10;  // libraries round
  const std::string player = LibraryWriter::nameOf(mirror_);
  const auto note = known().note;
  const auto said = ratingSaid();
  if (note && note->state == LibraryNote::State::pending && library_ != nullptr) {
    library_->writeAgain(mirror_, *now(), identity(), ours);
  }
  if (!said || (note && note->said == said)) return ours;
  LibraryNote heard{.said = said, .state = note ? note->state : LibraryNote::State::none};
  known_.reset();
  const bool isOurs = !note || (note->awaitsOurs && std::abs(*said - ours) <= halfStar);
  if (isOurs) {
    ratings_->note(identity(), player, heard);
    return ours;
  }
  heard.state = LibraryNote::State::none;
  ratings_->setTrackRating(identity(), *said, player, heard);
  return *said;
}

PlayerGlance FollowedPlayer::glance() {
  PlayerGlance glance{.player = mirror_.shortName().toStdString(),
                      .identity = mirror_.identity().toStdString(),
                      .state = state(),
                      .volume = mirror_.volume(),
                      .track = track()};
  if (!glance.track) return glance;
  glance.address = now()->address.toStdString();
  glance.artworkAddress = now()->artworkAddress.toStdString();
  return glance;
}

PlayerReport FollowedPlayer::report() {
  PlayerReport report{glance()};
  if (!report.track) return report;
  report.position = position();
  report.rating = rating(Marked::track);
  report.albumRating = rating(Marked::album);
  report.isLoved = isLoved(Marked::track);
  report.isAlbumLoved = isLoved(Marked::album);
  const auto& note = known().note;
  constexpr std::array names{"none", "pending", "written", "refused"};
  if (note) report.library = names[static_cast<std::size_t>(note->state)];
  return report;
}

bool FollowedPlayer::setRating(Marked of, std::int64_t rating) {
  const auto value = static_cast<int>(rating);
  known_.reset();
  if (of == Marked::album) {
    return ratings_ != nullptr && ratings_->setAlbumRating(identity(), value);
  }
  if (now() != nullptr && mirror_.hasWritableRating(*now())) {
    return mirror_.setOwnRating(*now(), value / 100.0);
  }
  if (ratings_ == nullptr || now() == nullptr) return false;
  const bool hasLibrary = library_ != nullptr && library_->takesRatings(mirror_);
  const LibraryNote note{
      .said = ratingSaid(),
      .state = hasLibrary ? LibraryNote::State::pending : LibraryNote::State::none,
      .awaitsOurs = hasLibrary};
  if (!ratings_->setTrackRating(identity(), value, LibraryWriter::nameOf(mirror_), note)) {
    return false;
  }
  if (hasLibrary) library_->write(mirror_, *now(), identity(), value);
  return true;
}

bool FollowedPlayer::isLoved(Marked of) {
  const Marks& marks = of == Marked::track ? known().track : known().album;
  return marks.loved.value_or(false);
}

bool FollowedPlayer::setLoved(Marked of, bool loved) {
  if (ratings_ == nullptr) return false;
  known_.reset();
  return of == Marked::track ? ratings_->setTrackLoved(identity(), loved)
                             : ratings_->setAlbumLoved(identity(), loved);
}

}  // namespace desktop
