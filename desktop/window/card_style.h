// The look of the card that the widget lies on.
#pragma once

#include "platform/foundation/color.h"

namespace desktop {

inline constexpr double cardCornerRadius = 12;  ///< points
inline constexpr double cardHeaderHeight = 24;  ///< points

/// What the card is filled with. A hint of what lies behind shines through.
constexpr platform::NSColor cardColor(platform::Appearance appearance) {
  if (platform::hasHighContrast(appearance)) {
    const double level = platform::isDark(appearance) ? 0 : 1;
    return platform::NSColor::colorWithRGBA(level, level, level, 1);
  }
  return platform::isDark(appearance) ? platform::NSColor::colorWithRGBA(0.145, 0.149, 0.165, 0.97)
                                      : platform::NSColor::colorWithRGBA(0.973, 0.973, 0.980, 0.97);
}

/// The hairline around the card, which sets it off from a background of its own colour.
constexpr platform::NSColor cardBorderColor(platform::Appearance appearance) {
  if (platform::hasHighContrast(appearance)) {
    return platform::NSColor::labelColor().resolved(appearance);
  }
  return platform::isDark(appearance) ? platform::NSColor::colorWithRGBA(1, 1, 1, 0.13)
                                      : platform::NSColor::colorWithRGBA(0, 0, 0, 0.14);
}

/// The label colour as it looks on the card, for what cannot be drawn translucent.
constexpr platform::NSColor opaqueLabelColor(platform::Appearance appearance) {
  const platform::NSColor label = platform::NSColor::labelColor().resolved(appearance);
  const platform::NSColor card = cardColor(appearance);
  const auto over = [alpha = label.alpha()](double above, double below) {
    return above * alpha + below * (1 - alpha);
  };
  return platform::NSColor::colorWithRGBA(over(label.red(), card.red()),
                                          over(label.green(), card.green()),
                                          over(label.blue(), card.blue()), 1);
}

}  // namespace desktop
