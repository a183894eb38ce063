#include "controls/text_label.h"

#include <limits>

#include "extensions/collections.h"
#include "platform/foundation/attributed_string.h"
#include "platform/graphics/canvas.h"

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

bool VLTextLabel::drawTextInRect(NSRect) {
  const auto shown = text();
  if (!shown || shown->empty()) return false;
  const auto attributes = textAttributes();
  if (attributes.empty()) return false;

  const auto size = bounds().size;
  const double insetX = insetFraction * size.width;
  const double insetY = insetFraction * size.height;
  const NSRect area =
      platform::NSMakeRect(insetX, insetY, size.width - 2 * insetX, size.height - 2 * insetY);
  if (auto* context = platform::NSGraphicsContext::current()) {
    platform::drawTextCentredInRect(context->canvas(), {*shown, attributes}, area, drawingOptions,
                                    std::numeric_limits<double>::max());
  }
  return true;
}

}  // namespace virelune
