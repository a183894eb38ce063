#include "player/love_rating.h"

#include <algorithm>
#include <memory>

#include "extensions/application_paths.h"
#include "platform/foundation/property_list.h"
#include "player/itunes.h"
#include "player/process_queries.h"

namespace virelune {

namespace {

constexpr const char* useAutoLoveKey = "UseAutoLove";
constexpr const char* useAutoLoveValueKey = "UseAutoLoveValue";

constexpr std::int64_t maximumRating = 100;
constexpr std::int64_t halfStar = 10;

std::int64_t clampedRating(std::int64_t rating) {
  return std::clamp<std::int64_t>(rating, 0, maximumRating);
}

/// The marks that a command works on: the track's own, or its album's.
struct Marks {
  bool (AEiTunesTrack::*loved)() const;
  void (AEiTunesTrack::*setLoved)(bool) const;
  std::int64_t (AEiTunesTrack::*rating)() const;
  void (AEiTunesTrack::*setRating)(std::int64_t) const;
  FourCharCode (AEiTunesTrack::*ratingKind)() const;
};

constexpr Marks trackMarks{&AEiTunesTrack::loved, &AEiTunesTrack::setLoved, &AEiTunesTrack::rating,
                           &AEiTunesTrack::setRating, &AEiTunesTrack::ratingKind};
constexpr Marks albumMarks{&AEiTunesTrack::albumLoved, &AEiTunesTrack::setAlbumLoved,
                           &AEiTunesTrack::albumRating, &AEiTunesTrack::setAlbumRating,
                           &AEiTunesTrack::albumRatingKind};

/// A write would wake a player that does not run.
std::shared_ptr<AEiTunesTrack> trackToMark() {
  return vl_iTunesIsRunning() ? AEiTunesApplication::vl_currentTrack() : nullptr;
}

/// The rating that the user gave; 0 for a computed one and for none.
std::int64_t userRating(const AEiTunesTrack& track, const Marks& marks) {
  return (track.*marks.ratingKind)() == AEiTunesRatingKindUser ? (track.*marks.rating)() : 0;
}

bool setAutoRating(const Marks& marks) {
  const auto track = trackToMark();
  if (!track) return false;
  const std::int64_t rating = userRating(*track, marks);
  const std::int64_t threshold = vl_autoLovedRating();
  if ((*track.*marks.loved)()) {
    if (rating >= threshold) return false;
    (*track.*marks.setRating)(threshold);
    return true;
  }
  const std::int64_t unlovedRating = std::max<std::int64_t>(threshold - halfStar, 0);
  if (rating < unlovedRating) return false;
  (*track.*marks.setRating)(unlovedRating);
  return true;
}

bool setLoved(const Marks& marks, bool loved) {
  const auto track = trackToMark();
  if (!track) return false;
  (*track.*marks.setLoved)(loved);
  if (vl_useAutoLovedRating()) setAutoRating(marks);
  return true;
}

bool toggleLoved(const Marks& marks) {
  const auto track = trackToMark();
  if (!track) return false;
  return setLoved(marks, !(*track.*marks.loved)());
}

bool setAutoLoved(const Marks& marks) {
  const auto track = trackToMark();
  if (!track) return false;
  const std::int64_t rating = userRating(*track, marks);
  setLoved(marks, rating >= vl_autoLovedRating());
  return true;
}

bool setRating(const Marks& marks, std::int64_t rating, bool (*setAutoLovedAfterwards)()) {
  const auto track = trackToMark();
  if (!track) return false;
  (*track.*marks.setRating)(clampedRating(rating));
  if (vl_useAutoLovedRating()) setAutoLovedAfterwards();
  return true;
}

}  // namespace

std::optional<platform::Dictionary> vl_generalPreferencesInfo() {
  const auto url = vl_applicationPreferencesURLForPlistGeneral();
  const auto path = url ? url->filePath() : std::nullopt;
  if (!path) return std::nullopt;
  auto info = platform::dictionaryWithContentsOfFile(*path);
  return info && !info->empty() ? std::move(info) : std::nullopt;
}

bool vl_useAutoLovedRating() {
  const auto use = vl_generalPreferencesInfoValueForKey_andClass<platform::Number>(useAutoLoveKey);
  return use && use->boolValue();
}

std::int64_t vl_autoLovedRating() {
  const auto value =
      vl_generalPreferencesInfoValueForKey_andClass<platform::Number>(useAutoLoveValueKey);
  return value ? clampedRating(value->integerValue()) : 0;
}

bool vl_setAutoLoveRule(std::optional<std::int64_t> threshold) {
  const auto url = vl_applicationPreferencesURLForPlistGeneral();
  const auto path = url ? url->filePath() : std::nullopt;
  if (!path) return false;
  if (!threshold) return platform::setEntriesOfFile(*path, {{useAutoLoveKey, false}});
  return platform::setEntriesOfFile(
      *path, {{useAutoLoveKey, true}, {useAutoLoveValueKey, clampedRating(*threshold)}});
}

bool vl_toggleTrackLoved() { return toggleLoved(trackMarks); }

bool vl_setCurrentTrackLoved(bool loved) { return setLoved(trackMarks, loved); }

bool vl_setCurrentTrackAutoLoved() {
  const auto track = trackToMark();
  if (!track || std::dynamic_pointer_cast<AEiTunesURLTrack>(track->get())) return false;
  return setAutoLoved(trackMarks);
}

bool vl_setCurrentTrackRating(std::int64_t rating) {
  return setRating(trackMarks, rating, vl_setCurrentTrackAutoLoved);
}

bool vl_setCurrentTrackAutoRating() { return setAutoRating(trackMarks); }

bool vl_toggleAlbumLoved() { return toggleLoved(albumMarks); }

bool vl_setCurrentAlbumLoved(bool loved) { return setLoved(albumMarks, loved); }

bool vl_setCurrentAlbumAutoLoved() { return setAutoLoved(albumMarks); }

bool vl_setCurrentAlbumRating(std::int64_t rating) {
  return setRating(albumMarks, rating, vl_setCurrentAlbumAutoLoved);
}

bool vl_setCurrentAlbumAutoRating() { return setAutoRating(albumMarks); }

}  // namespace virelune
