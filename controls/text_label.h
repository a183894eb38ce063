// A label: one text, wrapped inside a slightly inset area and centred vertically.
#pragma once

#include <optional>
#include <string>
#include <utility>

#include "controls/view.h"
#include "platform/foundation/font.h"
#include "platform/foundation/value.h"

namespace virelune {

/// Draws a text with a font, a colour and an alignment. What does not fit is cut off after the
/// last visible line, which then ends in an ellipsis.
class VLTextLabel : public VLView {
 public:
  using VLView::VLView;

  // Every setter marks the label for redisplay and answers true.
  bool setText(std::optional<std::string> text);
  std::optional<std::string> text() const { return contentText(); }
  bool setTextAlignment(platform::NSTextAlignment alignment);
  platform::NSTextAlignment textAlignment() const { return contentTextAlignment(); }
  /// None: the platform's default text colour.
  bool setTextColor(std::optional<platform::NSColor> color);
  std::optional<platform::NSColor> textColor() const { return contentTextColor(); }
  /// None: the platform's default font.
  bool setTextFont(std::optional<platform::NSFont> font);
  std::optional<platform::NSFont> textFont() const { return contentTextFont(); }

  platform::NSParagraphStyle textParagraphStyle() const;
  /// Font, colour and paragraph style; a missing font or colour leaves no entry.
  platform::Dictionary textAttributes() const;

  /// The whole text, when it does not fit.
  std::optional<std::string> toolTip() const override;
  platform::NSAccessibilityRole accessibilityRole() const override {
    return platform::NSAccessibilityRole::staticText;
  }
  std::string accessibilityLabel() const override { return text().value_or(std::string()); }

  void drawRect(platform::NSRect dirtyRect) override;
  /// Draws the text into the bounds; the rectangle does not matter. False when there is no text.
  bool drawTextInRect(platform::NSRect rect);

  std::optional<std::string> contentText() const { return contentText_; }
  void setContentText(std::optional<std::string> text) { contentText_ = std::move(text); }
  platform::NSTextAlignment contentTextAlignment() const { return contentTextAlignment_; }
  void setContentTextAlignment(platform::NSTextAlignment alignment) {
    contentTextAlignment_ = alignment;
  }
  std::optional<platform::NSColor> contentTextColor() const { return contentTextColor_; }
  void setContentTextColor(std::optional<platform::NSColor> color) { contentTextColor_ = color; }
  std::optional<platform::NSFont> contentTextFont() const { return contentTextFont_; }
  void setContentTextFont(std::optional<platform::NSFont> font) { contentTextFont_ = font; }

 private:
  platform::NSRect textArea() const;

  std::optional<std::string> contentText_;
  platform::NSTextAlignment contentTextAlignment_ = platform::NSTextAlignment::left;
  std::optional<platform::NSColor> contentTextColor_;
  std::optional<platform::NSFont> contentTextFont_;
};

}  // namespace virelune
