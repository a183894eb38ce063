#include "platform/application/bundle.h"
#include "platform/foundation/image.h"
#include "player/process_queries.h"
#include "track/track_view_controller.h"
#include "widget/constants.h"

namespace virelune {

VLTrackViewController::~VLTrackViewController() {
  stopBeats1InfoLoader(this);
  stopHeartbeatTimer(this);
  setContentNameTextLabel(nullptr);
  setContentArtistTextLabel(nullptr);
  setContentTimeTextLabel(nullptr);
  setContentArtworkButton(nullptr);
  setContentPlayButton(nullptr);
  setContentProgressIndicator(nullptr);
  setContentLoveButton(nullptr);
  setContentRatingIndicator(nullptr);
  setContentHeartbeatTimer(nullptr);
  setContentBeats1InfoLoader(nullptr);
}

void VLTrackViewController::viewWillAppear() {
  VLViewController::viewWillAppear();
  startHeartbeatTimer(this);
}

void VLTrackViewController::viewWillDisappear() {
  stopBeats1InfoLoader(this);
  stopHeartbeatTimer(this);
  VLViewController::viewWillDisappear();
}

bool VLTrackViewController::update(NSObject* sender) {
  VLViewController::update(sender);
  updateNameTextLabel();
  updateArtistTextLabel();
  updateTimeTextLabel();
  updateArtworkButton();
  updatePlayButton();
  updateProgressIndicator();
  updateLoveButton();
  updateRatingIndicator();
  if (vl_iTunesIsPlayingBeats1()) {
    startBeats1InfoLoader(this);
  } else {
    stopBeats1InfoLoader(this);
  }
  return true;
}

bool VLTrackViewController::updateNameTextLabel() {
  const auto label = contentNameTextLabel();
  return label && label->setText(infoTrackName());
}

bool VLTrackViewController::updateArtistTextLabel() {
  const auto label = contentArtistTextLabel();
  return label && label->setText(infoTrackArtistWithAlbum());
}

bool VLTrackViewController::updateTimeTextLabel() {
  const auto label = contentTimeTextLabel();
  return label && label->setText(infoTrackTimeDescription());
}

bool VLTrackViewController::updateArtworkButton() {
  const auto button = contentArtworkButton();
  if (!button) return false;
  auto artwork = infoTrackArtwork();
  const bool hasArtwork = infoTrackHasArtwork();
  auto artist = infoTrackAlbumArtist();
  if (!artist) artist = infoTrackArtist();
  const auto album = infoTrackAlbum();
  button->setArtwork_forArtist_withAlbum_download(std::move(artwork), artist, album, !hasArtwork);
  return true;
}

bool VLTrackViewController::updatePlayButton() {
  const auto button = contentPlayButton();
  if (!button) return false;
  button->setImage(infoTrackPlayImage());
  return true;
}

bool VLTrackViewController::updateProgressIndicator() {
  updateProgressIndicatorMaxValue();
  updateProgressIndicatorNowValue();
  return true;
}

bool VLTrackViewController::updateProgressIndicatorMaxValue() {
  const auto indicator = contentProgressIndicator();
  if (!indicator) return false;
  indicator->setMaxValue(infoTrackDuration());
  return true;
}

bool VLTrackViewController::updateProgressIndicatorNowValue() {
  const auto indicator = contentProgressIndicator();
  if (!indicator) return false;
  indicator->setNowValue(infoTrackPlayerPosition());
  return true;
}

bool VLTrackViewController::updateLoveButton() {
  const auto button = contentLoveButton();
  if (!button) return false;
  const bool isLoved = infoTrackLoved();
  button->setImage(platform::imageNamed(isLoved ? VLImageLoveOn : VLImageLoveOff));
  button->setAccessibilityState(isLoved);
  return true;
}

bool VLTrackViewController::updateRatingIndicator() {
  updateRatingIndicatorType();
  updateRatingIndicatorNowValue();
  return true;
}

bool VLTrackViewController::updateRatingIndicatorType() {
  const auto indicator = contentRatingIndicator();
  if (!indicator) return false;
  indicator->setRatingType(infoTrackRatingType());
  return true;
}

bool VLTrackViewController::updateRatingIndicatorNowValue() {
  const auto indicator = contentRatingIndicator();
  if (!indicator) return false;
  indicator->setNowValue(infoTrackRating());
  return true;
}

// Heartbeat

bool VLTrackViewController::startHeartbeatTimer(NSObject*) {
  stopHeartbeatTimer(this);
  auto timer = platform::NSTimer::timerWithTimeInterval(
      1.0, this, &VLTrackViewController::firedHeartbeatTimer);
  platform::RunLoop* runLoop = platform::RunLoop::currentRunLoop();
  if (!timer || runLoop == nullptr) return false;
  setContentHeartbeatTimer(timer);
  runLoop->addTimer(timer);
  return true;
}

bool VLTrackViewController::stopHeartbeatTimer(NSObject*) {
  const auto timer = contentHeartbeatTimer();
  if (!timer) return false;
  timer->invalidate();
  setContentHeartbeatTimer(nullptr);
  return true;
}

bool VLTrackViewController::firedHeartbeatTimer(platform::NSTimer*) {
  stopHeartbeatTimer(this);
  updateProgressIndicatorNowValue();
  updateTimeTextLabel();
  startHeartbeatTimer(this);
  return true;
}

}  // namespace virelune
