#include "controls/progress_indicator.h"

#include <algorithm>

#include "platform/graphics/canvas.h"
#include "platform/graphics/graphics.h"

using platform::NSColor;
using platform::NSEvent;
using platform::NSPoint;
using platform::NSRect;
using platform::NSTimer;
using platform::RunLoop;

namespace virelune {
namespace {

constexpr platform::TimeInterval actionDelay = 0.2;  // of a drag that rests
constexpr double remainingAlpha = 0.5;
constexpr double barThickness = 0.5;   // of the indicator's height
constexpr double knobWidth = 1.0 / 3;  // of the bar's thickness

/// Negative values, and what is not a number, count as 0.
double notNegative(double value) { return value > 0 ? value : 0; }

void fill(NSRect rect, NSColor color) {
  platform::setCurrentColor(color);
  platform::NSRectFillUsingOperation(rect, platform::NSCompositeSourceOver);
}

}  // namespace

VLProgressIndicator::~VLProgressIndicator() { stopActionTimer(this); }

// Mouse

void VLProgressIndicator::mouseUp(const NSEvent* event) {
  VLView::mouseUp(event);
  if (!isMaxValueValid()) return;
  stopActionTimer(this);
  performTargetAction(this);
}

void VLProgressIndicator::mouseDown(const NSEvent* event) {
  VLView::mouseDown(event);
  if (!isMaxValueValid()) return;
  stopActionTimer(this);
  if (event == nullptr || event->clickCount <= 0) return;
  setNowValueFromEvent(event);
  performTargetAction(this);
}

void VLProgressIndicator::mouseDragged(const NSEvent* event) {
  VLView::mouseDragged(event);
  if (!isMaxValueValid()) return;
  startActionTimer(this);
  setNowValueFromEvent(event);
}

// Values

bool VLProgressIndicator::setMaxValue(double value) {
  setContentMaxValue(notNegative(value));
  setNeedsDisplay(true);
  return true;
}

double VLProgressIndicator::maxValue() const { return notNegative(contentMaxValue()); }

bool VLProgressIndicator::setNowValue(double value) {
  if ((NSEvent::pressedMouseButtons() & 1) != 0) return false;
  return setNowValueImmediately(value);
}

double VLProgressIndicator::nowValue() const { return notNegative(contentNowValue()); }

bool VLProgressIndicator::setNowValueImmediately(double value) {
  setContentNowValue(notNegative(value));
  setNeedsDisplay(true);
  return true;
}

bool VLProgressIndicator::setNowValueFromEvent(const NSEvent* event) {
  if (event == nullptr) return false;
  setNowValueImmediately(nowValueFromPoint(convertPointFromWindow(event->locationInWindow)));
  return true;
}

double VLProgressIndicator::nowValueFromPoint(NSPoint point) const {
  if (point.x <= 0) return 0;
  const double width = frame().size.width;
  if (width <= 0) return 0;
  return notNegative(std::min(point.x / width * maxValue(), maxValue()));
}

bool VLProgressIndicator::isMaxValueValid() const { return maxValue() > 0; }

// Accessibility

std::optional<platform::NSAccessibilityValue> VLProgressIndicator::accessibilityValue() const {
  constexpr double step = 5;
  if (!isMaxValueValid()) return std::nullopt;
  return platform::NSAccessibilityValue{std::min(nowValue(), maxValue()), maxValue(), step};
}

bool VLProgressIndicator::setAccessibilityValue(double value) {
  if (!isMaxValueValid()) return false;
  setNowValueImmediately(std::min(value, maxValue()));
  return performTargetAction(this);
}

// Drawing

void VLProgressIndicator::drawRect(NSRect dirtyRect) {
  VLView::drawRect(dirtyRect);
  drawProgress();
}

NSColor VLProgressIndicator::drawProgressLeftColor() const { return color(); }

NSColor VLProgressIndicator::drawProgressRightColor() const {
  return drawProgressLeftColor().colorWithAlphaComponent(remainingAlpha);
}

bool VLProgressIndicator::drawProgress() {
  drawProgressLeft();
  drawProgressRight();
  if (isMaxValueValid()) drawProgressCenter();
  return true;
}

bool VLProgressIndicator::drawProgressLeft() {
  fill(drawProgressLeftRect(), drawProgressLeftColor());
  return true;
}

bool VLProgressIndicator::drawProgressRight() {
  fill(drawProgressRightRect(), drawProgressRightColor());
  return true;
}

bool VLProgressIndicator::drawProgressCenter() {
  fill(drawProgressCenterRect(), drawProgressLeftColor());
  return true;
}

double VLProgressIndicator::drawProgressLeftWidthFromRect(NSRect rect) const {
  if (nowValue() <= 0 || maxValue() <= 0) return 0;
  return nowValue() / maxValue() * rect.size.width;
}

double VLProgressIndicator::drawProgressRightWidthFromRect(NSRect rect) const {
  return rect.size.width - drawProgressLeftWidthFromRect(rect);
}

NSRect VLProgressIndicator::drawProgressLeftRect() const {
  const double height = frame().size.height;
  const double thickness = barThickness * height;
  return platform::NSMakeRect(0, 0.5 * height - 0.5 * thickness,
                              drawProgressLeftWidthFromRect(frame()), thickness);
}

NSRect VLProgressIndicator::drawProgressRightRect() const {
  NSRect rect = drawProgressLeftRect();
  rect.origin.x = rect.maxX();
  rect.size.width = drawProgressRightWidthFromRect(frame());
  return rect;
}

NSRect VLProgressIndicator::drawProgressCenterRect() const {
  const NSRect elapsed = drawProgressLeftRect();
  const double width = elapsed.size.height * knobWidth;
  return platform::NSMakeRect(notNegative(elapsed.maxX() - width), 0, width, frame().size.height);
}

// The timer of a resting drag

bool VLProgressIndicator::startActionTimer(NSObject*) {
  stopActionTimer(this);
  auto* runLoop = RunLoop::currentRunLoop();
  if (runLoop == nullptr) return false;
  setContentActionTimer(
      NSTimer::timerWithTimeInterval(actionDelay, this, &VLProgressIndicator::firedActionTimer));
  runLoop->addTimer(contentActionTimer());
  return true;
}

bool VLProgressIndicator::stopActionTimer(NSObject*) {
  const auto timer = contentActionTimer();
  if (timer == nullptr) return false;
  timer->invalidate();
  setContentActionTimer(nullptr);
  return true;
}

bool VLProgressIndicator::firedActionTimer(NSTimer*) {
  stopActionTimer(this);
  performTargetAction(this);
  return true;
}

// Target and action

bool VLProgressIndicator::performTargetAction(NSObject*) { return action().send(target(), this); }

bool VLProgressIndicator::setTarget(const std::shared_ptr<NSObject>& target) {
  setContentActionTarget(target);
  return true;
}

bool VLProgressIndicator::setAction(platform::Selector action) {
  setContentActionSelector(std::move(action));
  return true;
}

// Colour

bool VLProgressIndicator::setColor(std::optional<NSColor> color) {
  setContentColor(color);
  setNeedsDisplay(true);
  return true;
}

NSColor VLProgressIndicator::color() const {
  return contentColor().value_or(NSColor::whiteColor());
}

}  // namespace virelune
