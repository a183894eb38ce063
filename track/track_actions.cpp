#include "panels/link.h"
#include "platform/loop/dispatch.h"
#include "platform/platform.h"
#include "player/love_rating.h"
#include "player/process_queries.h"
#include "track/track_view_controller.h"

namespace virelune {

using platform::NSObject;

namespace {

bool isOptionKeyHeld() {
  const auto& event = platform::current().application->currentEvent();
  return event && (event->modifierFlags & platform::NSEventModifierFlagOption) != 0;
}

/// The panel's own control if that is what the sender is; else null.
template <class Control>
std::shared_ptr<Control> ownControl(const NSObject* sender,
                                    const std::shared_ptr<Control>& control) {
  return sender != nullptr && sender == control.get() ? control : nullptr;
}

}  // namespace

bool VLTrackViewController::clickedArtworkButton(NSObject*) {
  if (vl_iTunesIsPlayingBeats1() || isOptionKeyHeld()) {
    openItmsForPlayingTrack(this);
    return true;
  }
  const auto application = infoApp();
  if (!application) return false;
  application->activate();
  const auto track = application->currentTrack();
  if (!track) return false;
  track->reveal();
  return true;
}

bool VLTrackViewController::clickedNextButton(NSObject*) {
  const auto application = infoApp();
  if (!application) return false;
  application->nextTrack();
  return true;
}

bool VLTrackViewController::clickedPlayButton(NSObject*) {
  const auto application = infoApp();
  if (!application) return false;
  application->playpause();
  return true;
}

bool VLTrackViewController::clickedPreviousButton(NSObject*) {
  const auto application = infoApp();
  if (!application) return false;
  application->previousTrack();
  return true;
}

bool VLTrackViewController::clickedProgressIndicator(NSObject* sender) {
  const auto indicator = ownControl(sender, contentProgressIndicator());
  if (!indicator) return false;
  const auto application = infoApp();
  if (!application) return false;
  application->setPlayerPosition(indicator->nowValue());
  updateProgressIndicatorNowValue();
  return true;
}

bool VLTrackViewController::clickedLoveButton(NSObject* sender) {
  if (sender == nullptr) return false;
  if (isOptionKeyHeld()) {
    vl_toggleAlbumLoved();
  } else {
    vl_toggleTrackLoved();
  }
  updateLoveButton();
  updateRatingIndicator();
  return true;
}

bool VLTrackViewController::clickedRatingIndicator(NSObject* sender) {
  const auto indicator = ownControl(sender, contentRatingIndicator());
  if (!indicator || !infoTrack()) return false;
  const std::int64_t rating = indicator->nowValue();
  if (isOptionKeyHeld()) {
    vl_setCurrentAlbumRating(rating);
  } else {
    vl_setCurrentTrackRating(rating);
  }
  updateRatingIndicator();
  updateLoveButton();
  return true;
}

bool VLTrackViewController::openItmsForPlayingTrack(NSObject*) {
  const auto artist = infoTrackArtist();
  if (!artist) return false;
  platform::DispatchQueue* queue = platform::dispatch_get_global_queue();
  if (queue == nullptr) return false;
  queue->async([artist = *artist] { VLLink::openStoreForArtist(artist); });
  return true;
}

}  // namespace virelune
