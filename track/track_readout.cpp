#include <vector>

#include "extensions/strings.h"
#include "platform/foundation/date.h"
#include "platform/foundation/image.h"
#include "player/process_queries.h"
#include "track/track_view_controller.h"
#include "widget/constants.h"

namespace virelune {

namespace {

using Text = std::optional<std::string>;

Text nonEmpty(Text text) { return text && !text->empty() ? std::move(text) : std::nullopt; }

void appendPart(std::vector<std::string>& parts, Text text) {
  if (text && !text->empty()) parts.push_back(std::move(*text));
}

/// The parts with a separator between each two; none without parts.
Text joined(const std::vector<std::string>& parts, const char* separator) {
  std::string text;
  for (const std::string& part : parts) text += (text.empty() ? "" : separator) + part;
  return nonEmpty(std::move(text));
}

/// Hours show only beyond the first one, however long the track is.
Text positionText(double seconds) {
  using namespace platform;
  NSDateComponentsFormatter formatter;
  formatter.setZeroFormattingBehavior(NSDateComponentsFormatterZeroFormattingBehaviorPad);
  formatter.setAllowedUnits((seconds > 3600.0 ? NSCalendarUnitHour : 0) | NSCalendarUnitMinute |
                            NSCalendarUnitSecond);
  return formatter.stringFromTimeInterval(seconds);
}

}  // namespace

// Sources

std::shared_ptr<AEiTunesApplication> VLTrackViewController::infoApp() const {
  if (!vl_iTunesIsRunningAndPlaying()) return nullptr;
  return AEiTunesApplication::applicationWithBundleIdentifier(VLBundleIdentifier_iTunes);
}

std::shared_ptr<AEiTunesTrack> VLTrackViewController::infoTrack() const {
  const auto application = infoApp();
  return application ? application->currentTrack() : nullptr;
}

Text VLTrackViewController::infoBeats1TrackName() const {
  const auto& loader = contentBeats1InfoLoader();
  return loader ? nonEmpty(loader->infoTrackName()) : std::nullopt;
}

Text VLTrackViewController::infoBeats1TrackArtist() const {
  const auto& loader = contentBeats1InfoLoader();
  return loader ? nonEmpty(loader->infoTrackArtist()) : std::nullopt;
}

Text VLTrackViewController::infoBeats1TrackAlbum() const {
  const auto& loader = contentBeats1InfoLoader();
  return loader ? nonEmpty(loader->infoTrackAlbum()) : std::nullopt;
}

std::shared_ptr<platform::NSImage> VLTrackViewController::infoBeats1TrackArtwork() const {
  const auto& loader = contentBeats1InfoLoader();
  return loader ? loader->infoTrackArtwork() : nullptr;
}

bool VLTrackViewController::infoBeats1TrackHasAlbumOrArtist() const {
  return infoBeats1TrackArtist() || infoBeats1TrackAlbum();
}

// Texts

Text VLTrackViewController::liveOrTrackText(LoaderText loaderText, TrackText trackText) const {
  if (vl_iTunesIsPlayingBeats1()) {
    if (auto text = (this->*loaderText)()) return text;
  }
  const auto track = infoTrack();
  return track ? nonEmpty((*track.*trackText)()) : std::nullopt;
}

Text VLTrackViewController::infoTrackName() const {
  return liveOrTrackText(&VLTrackViewController::infoBeats1TrackName, &AEiTunesTrack::name);
}

Text VLTrackViewController::infoTrackArtist() const {
  return liveOrTrackText(&VLTrackViewController::infoBeats1TrackArtist, &AEiTunesTrack::artist);
}

Text VLTrackViewController::infoTrackAlbum() const {
  return liveOrTrackText(&VLTrackViewController::infoBeats1TrackAlbum, &AEiTunesTrack::album);
}

Text VLTrackViewController::infoTrackAlbumArtist() const {
  return liveOrTrackText(&VLTrackViewController::infoBeats1TrackArtist,
                         &AEiTunesTrack::albumArtist);
}

Text VLTrackViewController::infoTrackArtistWithAlbum() const {
  std::vector<std::string> parts;
  if (!vl_iTunesIsPlayingBeats1()) {
    const auto track = infoTrack();
    if (!track) return std::nullopt;
    appendPart(parts, track->artist());
    appendPart(parts, track->album());
  } else if (infoBeats1TrackHasAlbumOrArtist()) {
    appendPart(parts, infoBeats1TrackArtist());
    appendPart(parts, infoBeats1TrackAlbum());
  } else {
    appendPart(parts, vl_localizedString("0002.0002"));
    appendPart(parts, vl_localizedString("0002.0003"));
  }
  return joined(parts, " — ");
}

Text VLTrackViewController::infoTrackTimeDescription() const {
  const auto application = infoApp();
  const auto track = infoTrack();
  if (!application || !track) return std::nullopt;
  std::vector<std::string> parts;
  appendPart(parts, positionText(application->playerPosition()));
  appendPart(parts, track->time());
  return joined(parts, " | ");
}

// Images

bool VLTrackViewController::infoTrackHasArtwork() const {
  if (vl_iTunesIsPlayingBeats1()) return true;
  const auto track = infoTrack();
  return track && track->artworks().count() > 0;
}

std::shared_ptr<platform::NSImage> VLTrackViewController::infoTrackArtwork() const {
  std::shared_ptr<platform::NSImage> image;
  if (vl_iTunesIsPlayingBeats1()) {
    image = infoBeats1TrackArtwork();
    if (!image) image = platform::imageNamed(VLImageArtworkBeats1);
  } else {
    const auto track = infoTrack();
    if (!track) return nullptr;
    const auto artworks = track->artworks();
    if (artworks.count() > 0) {
      const platform::Data data = artworks.objectAtIndex(0)->rawData();
      if (!data.isEmpty()) image = platform::imageWithData(data);
    }
  }
  return image ? image : platform::imageNamed(VLImageArtworkBackground);
}

std::shared_ptr<platform::NSImage> VLTrackViewController::infoTrackPlayImage() const {
  const auto application = infoApp();
  if (application && application->playerState() == AEiTunesPlayerStatePlaying) {
    if (auto image = platform::imageNamed(VLImageControllerPause)) return image;
  }
  return platform::imageNamed(VLImageControllerPlay);
}

// Numbers

double VLTrackViewController::infoTrackDuration() const {
  const auto track = infoTrack();
  return track ? track->duration() : 0;
}

double VLTrackViewController::infoTrackPlayerPosition() const {
  const auto application = infoApp();
  return application ? application->playerPosition() : 0;
}

bool VLTrackViewController::infoTrackLoved() const {
  const auto track = infoTrack();
  return track && track->loved();
}

std::int64_t VLTrackViewController::infoTrackRating() const {
  const auto track = infoTrack();
  return track ? track->rating() : 0;
}

std::int64_t VLTrackViewController::infoTrackRatingType() const {
  const auto track = infoTrack();
  if (!track) return VLRatingTypeUnknown;
  const FourCharCode kind = track->ratingKind();
  if (kind == AEiTunesRatingKindUser) return VLRatingTypeUser;
  return kind == AEiTunesRatingKindComputed ? VLRatingTypeComputed : VLRatingTypeUnknown;
}

}  // namespace virelune
