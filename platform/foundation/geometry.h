// Points, sizes and rectangles, in points; y grows upwards.
#pragma once

#include <algorithm>

namespace platform {

struct NSPoint {
  double x = 0;
  double y = 0;
  bool operator==(const NSPoint&) const = default;
};

struct NSSize {
  double width = 0;
  double height = 0;
  bool operator==(const NSSize&) const = default;
};

struct NSRect {
  NSPoint origin;
  NSSize size;
  bool operator==(const NSRect&) const = default;

  double minX() const { return origin.x; }
  double minY() const { return origin.y; }
  double maxX() const { return origin.x + size.width; }
  double maxY() const { return origin.y + size.height; }
  bool isEmpty() const { return !(size.width > 0 && size.height > 0); }
};

struct NSEdgeInsets {
  double top = 0;
  double left = 0;
  double bottom = 0;
  double right = 0;
  bool operator==(const NSEdgeInsets&) const = default;
};

inline constexpr NSEdgeInsets NSEdgeInsetsZero{};
inline constexpr NSRect NSZeroRect{};

constexpr NSRect NSMakeRect(double x, double y, double width, double height) {
  return {{x, y}, {width, height}};
}

/// The left and lower edges belong to the rectangle, the right and upper ones do not.
inline bool NSPointInRect(NSPoint point, NSRect rect) {
  return point.x >= rect.minX() && point.x < rect.maxX() && point.y >= rect.minY() &&
         point.y < rect.maxY();
}

/// The zero rectangle when the two do not overlap.
inline NSRect NSIntersectionRect(NSRect a, NSRect b) {
  const double x = std::max(a.minX(), b.minX());
  const double y = std::max(a.minY(), b.minY());
  const NSRect common =
      NSMakeRect(x, y, std::min(a.maxX(), b.maxX()) - x, std::min(a.maxY(), b.maxY()) - y);
  return common.isEmpty() ? NSZeroRect : common;
}

inline NSRect NSOffsetRect(NSRect rect, double dx, double dy) {
  return {{rect.origin.x + dx, rect.origin.y + dy}, rect.size};
}

}  // namespace platform
