// What a view is to those who have no pointer, or cannot see it.
#pragma once

namespace platform {

/// What takes the keyboard is a button, a toggle, a position or a rating.
enum class NSAccessibilityRole {
  none,
  staticText,
  button,
  toggle,    ///< a button that is on or off; its value is 1 or 0
  position,  ///< on a bar of time; its value is in seconds
  rating     ///< in stars; its value is in halves of one
};

struct NSAccessibilityValue {
  double now = 0;
  double maximum = 0;  ///< from 0
  double step = 1;
  bool operator==(const NSAccessibilityValue&) const = default;
};

}  // namespace platform
