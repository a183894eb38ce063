#include "platform/view/view.h"
#include "platform/graphics/canvas.h"

#include <algorithm>

#include "platform/graphics/graphics.h"
#include "platform/view/view_controller.h"
#include "platform/view/window.h"

namespace platform {

NSView::~NSView() {
  for (const auto& subview : subviews_) {
    subview->superview_ = nullptr;
    subview->setWindow(nullptr);
  }
}

void NSView::setFrame(NSRect frame) {
  if (frame == frame_) return;
  setNeedsDisplay(true);
  frame_ = frame;
  setNeedsDisplay(true);
}

NSPoint NSView::convertPointFromWindow(NSPoint point) const {
  for (const NSView* view = this; view != nullptr; view = view->superview_) {
    point.x -= view->frame_.origin.x;
    point.y -= view->frame_.origin.y;
  }
  return point;
}

NSRect NSView::convertRectToWindow(NSRect rect) const {
  for (const NSView* view = this; view != nullptr; view = view->superview_) {
    rect = NSOffsetRect(rect, view->frame_.origin.x, view->frame_.origin.y);
  }
  return rect;
}

void NSView::addSubview(const std::shared_ptr<NSView>& view) {
  if (!view || view.get() == this) return;
  view->removeFromSuperview();
  subviews_.push_back(view);
  view->superview_ = this;
  view->setWindow(window_);
  view->setNeedsDisplay(true);
  if (window_ != nullptr && window_->isVisible()) view->updateAppearance(true);
}

void NSView::removeFromSuperview() {
  if (superview_ == nullptr) return;
  const auto self = shared_from_this();
  if (window_ != nullptr && window_->isVisible()) updateAppearance(false);
  if (superview_ == nullptr) return;  // an observer of the disappearance removed it already
  setNeedsDisplay(true);
  std::erase(superview_->subviews_, self);
  superview_ = nullptr;
  setWindow(nullptr);
}

void NSView::setWindow(NSWindow* window) {
  window_ = window;
  for (const auto& subview : subviews_) subview->setWindow(window);
}

void NSView::updateAppearance(bool visible) {
  const auto self = shared_from_this();
  if (controller_ != nullptr) controller_->viewVisibilityChanged(visible);
  const auto children = subviews_;
  for (const auto& child : children) {
    if (child->superview_ == this) child->updateAppearance(visible);
  }
}

void NSView::setAlphaValue(double alpha) {
  alphaValue_ = std::clamp(alpha, 0.0, 1.0);
  setNeedsDisplay(true);
}

void NSView::setHidden(bool hidden) {
  if (hidden == hidden_) return;
  setNeedsDisplay(true);
  hidden_ = hidden;
  setNeedsDisplay(true);
}

void NSView::setWantsLayer(bool wantsLayer) {
  if (wantsLayer && !layer_) layer_.emplace();
  if (!wantsLayer) layer_.reset();
}

void NSView::setNeedsDisplay(bool needsDisplay) {
  if (needsDisplay) setNeedsDisplayInRect(bounds());
}

void NSView::setNeedsDisplayInRect(NSRect rect) {
  if (window_ == nullptr || hidden_) return;
  // Only what the parents let through can change on the screen.
  NSRect visible = NSIntersectionRect(rect, bounds());
  for (const NSView* view = this; view != nullptr && !visible.isEmpty(); view = view->superview_) {
    visible = NSOffsetRect(visible, view->frame_.origin.x, view->frame_.origin.y);
    if (view->superview_ != nullptr) {
      visible = NSIntersectionRect(visible, view->superview_->bounds());
    }
  }
  if (!visible.isEmpty()) window_->mark(visible);
}

void NSView::drawRect(NSRect) {}

void NSView::displayRect(Canvas& canvas, NSRect dirtyRect) {
  const NSRect dirty = NSIntersectionRect(dirtyRect, bounds());
  if (dirty.isEmpty() || hidden_) return;
  canvas.save();
  canvas.clip(bounds(), layer_ && layer_->masksToBounds ? layer_->cornerRadius : 0);
  canvas.multiplyAlpha(alphaValue_);
  {
    NSGraphicsContext context(canvas);
    drawRect(dirty);
  }
  for (const auto& subview : subviews_) {
    const NSPoint origin = subview->frame_.origin;
    canvas.save();
    canvas.translate(origin.x, origin.y);
    subview->displayRect(canvas, NSOffsetRect(dirty, -origin.x, -origin.y));
    canvas.restore();
  }
  canvas.restore();
}

NSView* NSView::hitTest(NSPoint pointInSuperview) {
  if (hidden_ || !NSPointInRect(pointInSuperview, frame_)) return nullptr;
  const NSPoint point{pointInSuperview.x - frame_.origin.x, pointInSuperview.y - frame_.origin.y};
  for (auto subview = subviews_.rbegin(); subview != subviews_.rend(); ++subview) {
    if (NSView* hit = (*subview)->hitTest(point)) return hit;
  }
  return this;
}

bool NSView::acceptsFirstMouse(const NSEvent*) { return false; }
void NSView::mouseDown(const NSEvent*) {}
void NSView::mouseDragged(const NSEvent*) {}
void NSView::mouseUp(const NSEvent*) {}
void NSView::mouseCancelled() {}

void NSView::keyDown(const NSEvent* event) {
  if (superview_ != nullptr) superview_->keyDown(event);
}

void NSScrollView::setDocumentView(std::shared_ptr<NSView> view) {
  if (documentView_) documentView_->removeFromSuperview();
  documentView_ = std::move(view);
  if (documentView_) addSubview(documentView_);
}

}  // namespace platform
