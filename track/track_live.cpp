#include "platform/platform.h"
#include "track/track_view_controller.h"
#include "widget/constants.h"

namespace virelune {

bool VLTrackViewController::startBeats1InfoLoader(NSObject*) {
  auto loader = platform::make<VLBeats1InfoLoader>();
  if (!loader || !loader->start(this)) return false;
  if (const auto previous = contentBeats1InfoLoader()) previous->stop(this);
  setContentBeats1InfoLoader(std::move(loader));
  startBeats1InfoLoaderNotificationObserver();
  return true;
}

bool VLTrackViewController::stopBeats1InfoLoader(NSObject*) {
  // Nothing that the loader still posts may arrive once stopping has begun.
  stopBeats1InfoLoaderNotificationObserver();
  const auto loader = contentBeats1InfoLoader();
  if (!loader) return false;
  setContentBeats1InfoLoader(nullptr);
  loader->stop(this);
  return true;
}

bool VLTrackViewController::startBeats1InfoLoaderNotificationObserver() {
  stopBeats1InfoLoaderNotificationObserver();
  const auto loader = contentBeats1InfoLoader();
  if (!loader) return false;
  platform::current().defaultCenter->addObserver(
      this, &VLTrackViewController::receivedBeats1InfoLoaderNotification,
      VLBeats1InfoLoaderNotificationName_Update, loader.get());
  return true;
}

bool VLTrackViewController::stopBeats1InfoLoaderNotificationObserver() {
  platform::current().defaultCenter->removeObserver(this,
                                                    VLBeats1InfoLoaderNotificationName_Update);
  return true;
}

bool VLTrackViewController::receivedBeats1InfoLoaderNotification(const platform::NSNotification*) {
  updateBeats1Info();
  return true;
}

bool VLTrackViewController::updateBeats1Info() {
  updateArtistTextLabel();
  updateArtworkButton();
  updateNameTextLabel();
  return true;
}

std::optional<LiveProgramme> VLTrackViewController::liveProgramme() const {
  const auto title = infoBeats1TrackName();
  if (!title) return std::nullopt;
  return LiveProgramme{.title = *title,
                       .artist = infoBeats1TrackArtist().value_or(""),
                       .album = infoBeats1TrackAlbum().value_or("")};
}

}  // namespace virelune
