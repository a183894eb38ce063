// Mouse and key events, and what the application knows of the one it handles.
#pragma once

#include <cstdint>
#include <optional>

#include "platform/foundation/geometry.h"

namespace platform {

enum class NSEventType {
  leftMouseDown,
  leftMouseUp,
  leftMouseDragged,
  rightMouseDown,
  mouseMoved,
  keyDown
};

inline constexpr std::uint64_t NSEventModifierFlagShift = 1U << 17;
inline constexpr std::uint64_t NSEventModifierFlagControl = 1U << 18;
inline constexpr std::uint64_t NSEventModifierFlagOption = 1U << 19;  ///< Alt
inline constexpr std::uint16_t NSKeyCodeEscape = 53;

struct NSEvent {
  NSEventType type = NSEventType::mouseMoved;
  NSPoint locationInWindow;
  std::int64_t clickCount = 0;
  std::uint64_t modifierFlags = 0;
  std::uint16_t keyCode = 0;

  /// The mouse buttons held down at this moment; bit 0 is the left one.
  static std::uint64_t pressedMouseButtons();
};

/// The running application, as far as events go. Main thread only.
class NSApplication {
 public:
  /// The event being handled; none between events.
  const std::optional<NSEvent>& currentEvent() const { return currentEvent_; }
  void setCurrentEvent(std::optional<NSEvent> event) { currentEvent_ = event; }

  std::uint64_t pressedMouseButtons() const { return pressedMouseButtons_; }
  void setPressedMouseButtons(std::uint64_t buttons) { pressedMouseButtons_ = buttons; }

 private:
  std::optional<NSEvent> currentEvent_;
  std::uint64_t pressedMouseButtons_ = 0;
};

}  // namespace platform
