#include "controls/artwork_button.h"

#include <utility>

using platform::NSEvent;
using platform::NSImage;

namespace virelune {

VLArtworkButton::~VLArtworkButton() { cancelDownload(this); }

// Display

void VLArtworkButton::setImage(std::shared_ptr<NSImage> image) {
  cancelDownload(this);
  NSButton::setImage(std::move(image));
}

bool VLArtworkButton::setArtwork_forArtist_withAlbum_download(
    std::shared_ptr<NSImage> image, const std::optional<std::string>& artist,
    const std::optional<std::string>& album, bool download) {
  setImage(std::move(image));
  if (download) startDownloadForArtist_withAlbum(artist, album);
  return true;
}

// Clicks

bool VLArtworkButton::acceptsFirstMouse(const NSEvent*) { return true; }

void VLArtworkButton::mouseDown(const NSEvent*) {}

void VLArtworkButton::mouseDragged(const NSEvent* event) { beginDraggingSessionWithEvent(event); }

void VLArtworkButton::mouseUp(const NSEvent* event) {
  if (event == nullptr) return;
  if (platform::NSPointInRect(convertPointFromWindow(event->locationInWindow), bounds())) {
    performClick(this);
  }
}

}  // namespace virelune
