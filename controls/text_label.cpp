#include "controls/text_label.h"

#include <algorithm>
#include <limits>

#include "extensions/collections.h"
#include "platform/foundation/attributed_string.h"
#include "platform/graphics/canvas.h"
#include "platform/graphics/graphics.h"

using platform::NSRect;

namespace virelune {
namespace {

constexpr double insetFraction = 0.02;
constexpr unsigned drawingOptions = platform::NSStringDrawingUsesLineFragmentOrigin |
                                    platform::NSStringDrawingTruncatesLastVisibleLine;

}  // namespace

bool VLTextLabel::setText(std::optional<std::string> text) {
  setContentText(std::move(text));
  setNeedsDisplay(true);
  return true;
}

bool VLTextLabel::setTextAlignment(platform::NSTextAlignment alignment) {
  setContentTextAlignment(alignment);
  setNeedsDisplay(true);
  return true;
}

bool VLTextLabel::setTextColor(std::optional<platform::NSColor> color) {
  setContentTextColor(color);
  setNeedsDisplay(true);
  return true;
}

bool VLTextLabel::setTextFont(std::optional<platform::NSFont> font) {
  setContentTextFont(font);
  setNeedsDisplay(true);
  return true;
}

platform::NSParagraphStyle VLTextLabel::textParagraphStyle() const {
  platform::NSParagraphStyle style;
  style.alignment = textAlignment();
  return style;
}

platform::Dictionary VLTextLabel::textAttributes() const {
  platform::Dictionary attributes;
  vl_setObject_forKey(attributes, textFont(), platform::NSFontAttributeName);
  vl_setObject_forKey(attributes, textColor(), platform::NSForegroundColorAttributeName);
  vl_setObject_forKey(attributes, textParagraphStyle(), platform::NSParagraphStyleAttributeName);
  return attributes;
}

void VLTextLabel::drawRect(NSRect dirtyRect) {
  VLView::drawRect(dirtyRect);
  drawTextInRect(dirtyRect);
}

NSRect VLTextLabel::textArea() const {
  const auto size = bounds().size;
  const double insetX = insetFraction * size.width;
  const double insetY = insetFraction * size.height;
  return platform::NSMakeRect(insetX, insetY, size.width - 2 * insetX, size.height - 2 * insetY);
}

std::optional<std::string> VLTextLabel::toolTip() const {
  const auto shown = text();
  if (!shown) return std::nullopt;
  const auto heightOf = [this](const std::string& lines) {
    constexpr double anyHeight = std::numeric_limits<double>::max();
    return platform::boundingRectWithSize_options_attributes(
               lines, {textArea().size.width, anyHeight},
               platform::NSStringDrawingUsesLineFragmentOrigin, textAttributes())
        .size.height;
  };
  const double room = std::max(heightOf("X"), textArea().size.height);
  return heightOf(*shown) > room ? shown : std::nullopt;
}

bool VLTextLabel::drawTextInRect(NSRect) {
  const auto shown = text();
  if (!shown || shown->empty()) return false;
  const auto attributes = textAttributes();
  if (attributes.empty()) return false;

  if (auto* context = platform::NSGraphicsContext::current()) {
    platform::drawTextCentredInRect(context->canvas(), {*shown, attributes}, textArea(),
                                    drawingOptions, std::numeric_limits<double>::max());
  }
  return true;
}

}  // namespace virelune
