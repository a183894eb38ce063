#include "platform/view/button.h"

#include <algorithm>

#include "platform/graphics/canvas.h"
#include "platform/graphics/graphics.h"

namespace platform {

void NSButton::setImage(std::shared_ptr<NSImage> image) {
  if (image == image_) return;
  image_ = std::move(image);
  setNeedsDisplay(true);
}

void NSButton::setAttributedTitle(const std::optional<NSAttributedString>& title) {
  if (title == attributedTitle_) return;
  attributedTitle_ = title;
  setNeedsDisplay(true);
}

void NSButton::setTitle(const std::string& title) {
  setAttributedTitle(NSAttributedString{title, {}});
}

void NSButton::setAlignment(NSTextAlignment alignment) {
  alignment_ = alignment;
  setNeedsDisplay(true);
}

void NSButton::setBordered(bool bordered) {
  bordered_ = bordered;
  setNeedsDisplay(true);
}

void NSButton::setImageScaling(NSImageScaling scaling) {
  imageScaling_ = scaling;
  setNeedsDisplay(true);
}

void NSButton::performClick(NSObject*) {
  const auto self = shared_from_this();  // the action may let go of the button
  action_.send(target_, this);
}

NSRect NSButton::imageRect() const {
  const NSRect area = bounds();
  if (!image_) return area;
  const NSSize size = image_->size();
  if (size.width <= 0 || size.height <= 0) return NSZeroRect;
  double scale = std::min(area.size.width / size.width, area.size.height / size.height);
  if (imageScaling_ == NSImageScaling::proportionallyDown) scale = std::min(scale, 1.0);
  const double width = size.width * scale;
  const double height = size.height * scale;
  return NSMakeRect((area.size.width - width) / 2, (area.size.height - height) / 2, width, height);
}

void NSButton::drawRect(NSRect) {
  auto* context = NSGraphicsContext::current();
  if (context == nullptr) return;
  Canvas& canvas = context->canvas();
  constexpr double borderRadius = 4;
  constexpr double pressedOpacity = 0.6;
  if (bordered_) {
    canvas.fillRoundedRect(bounds(), borderRadius,
                           NSColor::grayColor().colorWithAlphaComponent(0.25));
  }
  canvas.save();
  if (highlighted_) canvas.multiplyAlpha(pressedOpacity);
  if (image_) canvas.drawImage(*image_, imageRect(), 1);
  if (attributedTitle_ && !attributedTitle_->text.empty()) {
    NSAttributedString title = *attributedTitle_;
    title.attributes[NSParagraphStyleAttributeName] = NSParagraphStyle{alignment_};
    constexpr unsigned options =
        NSStringDrawingUsesLineFragmentOrigin | NSStringDrawingTruncatesLastVisibleLine;
    drawTextCentredInRect(canvas, title, bounds(), options, bounds().size.height);
  }
  canvas.restore();
}

std::string NSButton::accessibilityLabel() const {
  const std::string label = NSView::accessibilityLabel();
  return label.empty() && attributedTitle_ ? attributedTitle_->text : label;
}

std::optional<NSAccessibilityValue> NSButton::accessibilityValue() const {
  if (!state_) return std::nullopt;
  return NSAccessibilityValue{.now = *state_ ? 1.0 : 0.0, .maximum = 1};
}

bool NSButton::accessibilityPerformPress() {
  performClick(this);
  return true;
}

bool NSButton::contains(const NSEvent* event) const {
  return event != nullptr &&
         NSPointInRect(convertPointFromWindow(event->locationInWindow), bounds());
}

void NSButton::setHighlighted(bool highlighted) {
  if (highlighted == highlighted_) return;
  highlighted_ = highlighted;
  setNeedsDisplay(true);
}

void NSButton::mouseDown(const NSEvent* event) { setHighlighted(contains(event)); }

void NSButton::mouseDragged(const NSEvent* event) { setHighlighted(contains(event)); }

void NSButton::mouseUp(const NSEvent* event) {
  const bool clicked = highlighted_ && contains(event);
  setHighlighted(false);
  if (clicked) performClick(this);
}

}  // namespace platform
