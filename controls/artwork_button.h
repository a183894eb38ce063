// The button that shows the track's artwork.
#pragma once

#include <memory>
#include <optional>
#include <string>

#include "platform/button.h"

namespace virelune {

/// Shows the artwork; a click is its owner's business.
class VLArtworkButton : public platform::NSButton {
 public:
  using NSButton::NSButton;

  // Display

  /// Shows an image, and when download is true the album's cover instead once the store has one.
  bool setArtwork_forArtist_withAlbum_download(std::shared_ptr<platform::NSImage> image,
                                               const std::optional<std::string>& artist,
                                               const std::optional<std::string>& album,
                                               bool download);

  // Clicks. The release inside the bounds clicks; the press is not highlighted.
  bool acceptsFirstMouse(const platform::NSEvent* event) override;
  void mouseDown(const platform::NSEvent* event) override;
  void mouseUp(const platform::NSEvent* event) override;
};

}  // namespace virelune
