// The fonts the widget asks for, all of the desktop's system family, and paragraph styles.
#pragma once

#include <cstdint>
#include <optional>

namespace platform {

enum class NSFontWeight { regular, medium, bold };

/// A font of the system family. Sizes are in points.
struct NSFont {
  double size = 13;
  NSFontWeight weight = NSFontWeight::regular;
  bool monospacedDigits = false;  ///< all digits have one advance

  /// None for a size that is not above 0.
  static std::optional<NSFont> systemFontOfSize(double size) {
    return size > 0 ? std::optional(NSFont{size, NSFontWeight::regular, false}) : std::nullopt;
  }
  static std::optional<NSFont> monospacedDigitSystemFontOfSize_weight(double size,
                                                                      NSFontWeight weight) {
    return size > 0 ? std::optional(NSFont{size, weight, true}) : std::nullopt;
  }

  bool operator==(const NSFont&) const = default;
};

enum class NSTextAlignment : std::uint64_t {
  left = 0,
  right = 1,
  center = 2,
  justified = 3,
  natural = 4
};

struct NSParagraphStyle {
  NSTextAlignment alignment = NSTextAlignment::natural;
  bool operator==(const NSParagraphStyle&) const = default;
};

}  // namespace platform
