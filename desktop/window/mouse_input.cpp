#include "desktop/window/mouse_input.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QStyleHints>

namespace desktop {

std::uint64_t modifierFlags(Qt::KeyboardModifiers modifiers) {
  std::uint64_t flags = 0;
  if (modifiers.testFlag(Qt::ShiftModifier)) flags |= platform::NSEventModifierFlagShift;
  if (modifiers.testFlag(Qt::ControlModifier)) flags |= platform::NSEventModifierFlagControl;
  if (modifiers.testFlag(Qt::AltModifier)) flags |= platform::NSEventModifierFlagOption;
  return flags;
}

void MouseInput::press(const QMouseEvent& event, double height) {
  if (event.button() != Qt::LeftButton) return;
  if (pressed_) cancel();
  const QStyleHints& hints = *QGuiApplication::styleHints();
  const auto interval = static_cast<std::uint64_t>(hints.mouseDoubleClickInterval());
  const bool isSoon = clickCount_ > 0 && event.timestamp() - lastPressTime_ < interval;
  const bool isNear =
      (event.position() - lastPressPosition_).manhattanLength() <= hints.mouseDoubleClickDistance();
  clickCount_ = isSoon && isNear ? clickCount_ + 1 : 1;
  lastPressPosition_ = event.position();
  lastPressTime_ = event.timestamp();
  pressed_ = true;
  send(platform::NSEventType::leftMouseDown, event, height);
}

void MouseInput::move(const QMouseEvent& event, double height) {
  if (!pressed_) return;
  if (event.buttons().testFlag(Qt::LeftButton)) {
    send(platform::NSEventType::leftMouseDragged, event, height);
  } else {
    cancel();
  }
}

void MouseInput::release(const QMouseEvent& event, double height) {
  if (event.button() != Qt::LeftButton || !pressed_) return;
  pressed_ = false;
  send(platform::NSEventType::leftMouseUp, event, height);
}

void MouseInput::cancel() {
  pressed_ = false;
  window_.cancelMouseTracking();
}

void MouseInput::send(platform::NSEventType type, const QMouseEvent& event, double height) {
  platform::NSEvent sent;
  sent.type = type;
  sent.locationInWindow = {event.position().x(), height - event.position().y()};
  sent.clickCount = clickCount_;
  sent.modifierFlags = modifierFlags(event.modifiers());
  window_.sendEvent(sent);
}

}  // namespace desktop
