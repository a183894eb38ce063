#include "platform/view/window.h"
#include "platform/graphics/canvas.h"

#include <utility>

#include "platform/graphics/graphics.h"
#include "platform/platform.h"

namespace platform {

NSWindow::~NSWindow() {
  if (contentView_) contentView_->setWindow(nullptr);
}

void NSWindow::setContentView(std::shared_ptr<NSView> view) {
  if (contentView_) {
    if (visible_) contentView_->updateAppearance(false);
    contentView_->setWindow(nullptr);
  }
  contentView_ = std::move(view);
  if (!contentView_) return;
  contentView_->setWindow(this);
  contentView_->setNeedsDisplay(true);
  if (visible_) contentView_->updateAppearance(true);
}

void NSWindow::setVisible(bool visible) {
  if (visible == visible_) return;
  visible_ = visible;
  if (contentView_) contentView_->updateAppearance(visible);
  if (!visible) cancelMouseTracking();
}

void NSWindow::mark(NSRect rect) {
  if (markHandler_) markHandler_(rect);
}

void NSWindow::display(Canvas& canvas, NSRect dirtyRect) {
  if (!contentView_) return;
  const NSPoint origin = contentView_->frame().origin;
  canvas.save();
  canvas.translate(origin.x, origin.y);
  contentView_->displayRect(canvas, NSOffsetRect(dirtyRect, -origin.x, -origin.y));
  canvas.restore();
}

void NSWindow::sendEvent(const NSEvent& event) {
  NSApplication& application = *current().application;
  const auto previous = application.currentEvent();
  application.setCurrentEvent(event);
  switch (event.type) {
    case NSEventType::leftMouseDown: {
      application.setPressedMouseButtons(application.pressedMouseButtons() | 1U);
      NSView* hit = contentView_ ? contentView_->hitTest(event.locationInWindow) : nullptr;
      if (hit == nullptr) break;
      const auto view = std::static_pointer_cast<NSView>(hit->shared_from_this());
      pressedView_ = view;
      firstResponder_ = view;
      view->mouseDown(&event);
      break;
    }
    case NSEventType::leftMouseDragged:
      if (const auto view = pressedView_.lock()) view->mouseDragged(&event);
      break;
    case NSEventType::leftMouseUp:
      // The button is up before anyone hears of it, so that values from outside count again.
      application.setPressedMouseButtons(application.pressedMouseButtons() & ~std::uint64_t{1});
      if (const auto view = std::exchange(pressedView_, {}).lock()) view->mouseUp(&event);
      break;
    case NSEventType::keyDown: {
      auto view = firstResponder_.lock();
      if (!view || view->window() != this) view = contentView_;
      if (view) view->keyDown(&event);
      break;
    }
    case NSEventType::rightMouseDown:
    case NSEventType::mouseMoved:
      break;
  }
  application.setCurrentEvent(previous);
}

void NSWindow::cancelMouseTracking() {
  NSApplication& application = *current().application;
  application.setPressedMouseButtons(application.pressedMouseButtons() & ~std::uint64_t{1});
  if (const auto view = std::exchange(pressedView_, {}).lock()) view->mouseCancelled();
}

}  // namespace platform
