// The base view of the widget's controls and panels.
#pragma once

#include <optional>

#include "platform/foundation/color.h"
#include "platform/view/view.h"

namespace virelune {

/// A transparent view with an optional background colour that can leave full-screen mode on
/// Escape.
class VLView : public platform::NSView {
 public:
  using NSView::NSView;

  /// The colour drawn behind the content; none for a transparent view.
  std::optional<platform::NSColor> backgroundColor() const { return contentBackgroundColor(); }
  bool setBackgroundColor(std::optional<platform::NSColor> color);

  /// Whether Escape leaves full-screen mode.
  bool escKeyEndsFullscreenMode() const { return contentEscKeyEndsFullscreenMode(); }
  bool setEscKeyEndsFullscreenMode(bool ends);

  void drawRect(platform::NSRect dirtyRect) override;
  /// Fills the rectangle with the background colour, with the clear colour when there is none.
  bool drawBackgroundColorInRect(platform::NSRect rect);
  bool isOpaque() const override { return false; }
  void keyDown(const platform::NSEvent* event) override;

  std::optional<platform::NSColor> contentBackgroundColor() const {
    return contentBackgroundColor_;
  }
  void setContentBackgroundColor(std::optional<platform::NSColor> color) {
    contentBackgroundColor_ = color;
  }
  bool contentEscKeyEndsFullscreenMode() const { return contentEscKeyEndsFullscreenMode_; }
  void setContentEscKeyEndsFullscreenMode(bool ends) { contentEscKeyEndsFullscreenMode_ = ends; }

 private:
  std::optional<platform::NSColor> contentBackgroundColor_;
  bool contentEscKeyEndsFullscreenMode_ = false;
};

}  // namespace virelune
