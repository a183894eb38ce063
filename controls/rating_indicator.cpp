#include "controls/rating_indicator.h"

#include <algorithm>
#include <cmath>

#include "platform/application/bundle.h"
#include "platform/graphics/canvas.h"
#include "platform/graphics/graphics.h"
#include "widget/constants.h"

using platform::NSEvent;
using platform::NSPoint;
using platform::NSRect;

namespace virelune {
namespace {

constexpr std::int64_t topRating = 100;
constexpr std::int64_t starWorth = 20;
constexpr std::int64_t halfStarWorth = 10;

}  // namespace

// Mouse

void VLRatingIndicator::mouseUp(const NSEvent* event) {
  VLView::mouseUp(event);
  performTargetAction(this);
}

void VLRatingIndicator::mouseDown(const NSEvent* event) {
  VLView::mouseDown(event);
  if (event == nullptr || event->clickCount <= 0) return;
  setRatingType(VLRatingTypeUser);
  setNowValueFromEvent(event);
}

void VLRatingIndicator::mouseDragged(const NSEvent* event) {
  VLView::mouseDragged(event);
  setNowValueFromEvent(event);
}

// Value

bool VLRatingIndicator::setNowValue(std::int64_t value) {
  if ((NSEvent::pressedMouseButtons() & 1) != 0) return false;
  return setNowValueImmediately(value);
}

std::int64_t VLRatingIndicator::nowValue() const {
  return std::clamp<std::int64_t>(contentNowValue(), 0, maxValue());
}

bool VLRatingIndicator::setNowValueImmediately(std::int64_t value) {
  value = std::clamp<std::int64_t>(value, 0, maxValue());
  const std::int64_t base = drawRatingBase();
  const std::int64_t rest = value % base;
  setContentNowValue(rest < base / 2 ? value - rest : value - rest + base);
  setNeedsDisplay(true);
  return true;
}

bool VLRatingIndicator::setNowValueFromEvent(const NSEvent* event) {
  if (event == nullptr) return false;
  setNowValueImmediately(nowValueFromPoint(convertPointFromWindow(event->locationInWindow)));
  return true;
}

std::int64_t VLRatingIndicator::nowValueFromPoint(NSPoint point) const {
  if (point.x < 1) return 0;
  const double width = frame().size.width;
  if (width < 1) return 0;
  const auto top = static_cast<double>(maxValue());
  return static_cast<std::int64_t>(std::clamp(point.x / width * top, 0.0, top));
}

// Accessibility

std::optional<platform::NSAccessibilityValue> VLRatingIndicator::accessibilityValue() const {
  const auto base = static_cast<double>(drawRatingBase());
  return platform::NSAccessibilityValue{.now = static_cast<double>(nowValue()) / base,
                                        .maximum = static_cast<double>(maxValue()) / base};
}

bool VLRatingIndicator::setAccessibilityValue(double value) {
  setRatingType(VLRatingTypeUser);
  const double halves = std::clamp(value, 0.0, accessibilityValue()->maximum);
  setNowValueImmediately(std::lround(halves) * drawRatingBase());
  return performTargetAction(this);
}

bool VLRatingIndicator::setRatingType(std::int64_t type) {
  setContentRatingType(type);
  setNeedsDisplay(true);
  return true;
}

// Drawing

void VLRatingIndicator::drawRect(NSRect dirtyRect) {
  VLView::drawRect(dirtyRect);
  drawRatingInRect(dirtyRect);
}

bool VLRatingIndicator::drawRatingInRect(NSRect) {
  const std::int64_t count = drawRatingCount();
  if (count < 1) return false;
  for (std::int64_t index = 0; index < count; ++index) drawRatingAtIndex(index);
  return true;
}

bool VLRatingIndicator::drawRatingAtIndex(std::int64_t index) {
  const auto image = drawRatingImageAtIndex(index);
  if (image == nullptr) return false;
  platform::drawImageInRect(*image, drawRatingRectAtIndex(index), platform::NSCompositeSourceOver,
                            1.0);
  return true;
}

NSRect VLRatingIndicator::drawRatingRectAtIndex(std::int64_t index) const {
  if (index < 0 || drawRatingCount() < 1) return platform::NSZeroRect;
  const double width = frame().size.width / static_cast<double>(drawRatingCount());
  return platform::NSMakeRect(static_cast<double>(index) * width, 0, width, frame().size.height);
}

std::shared_ptr<platform::NSImage> VLRatingIndicator::drawRatingImageAtIndex(
    std::int64_t index) const {
  if (index < 0 || drawRatingCount() < 1) return nullptr;
  const std::int64_t half = maxValue() / drawRatingCount() * index + drawRatingBase();
  if (nowValue() < half) return platform::imageNamed(VLImageRatingStarDot);
  if (nowValue() == half) return platform::imageNamed(VLImageRatingStarHalf);
  return platform::imageNamed(ratingType() == VLRatingTypeUser ? VLImageRatingStarFull
                                                               : VLImageRatingStarEmpty);
}

// Target and action

bool VLRatingIndicator::performTargetAction(NSObject*) { return action().send(target(), this); }

bool VLRatingIndicator::setTarget(const std::shared_ptr<NSObject>& target) {
  setContentActionObject(target);
  return true;
}

bool VLRatingIndicator::setAction(platform::Selector action) {
  setContentActionSelector(std::move(action));
  return true;
}

// Text form

std::string vl_descriptionFromRatingValue(std::int64_t value) {
  value = std::clamp<std::int64_t>(value, 0, topRating);
  std::string description;
  if (value >= starWorth) description = std::to_string(value / starWorth);
  if (value % starWorth == halfStarWorth) description += "½";
  return description.empty() ? "0" : description;
}

}  // namespace virelune
