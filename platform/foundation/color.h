// Colours: fixed ones, and those that follow the light or dark appearance when they are drawn.
#pragma once

#include <algorithm>

namespace platform {

enum class Appearance { light, dark, highContrastLight, highContrastDark };

constexpr bool isDark(Appearance appearance) {
  return appearance == Appearance::dark || appearance == Appearance::highContrastDark;
}
constexpr bool hasHighContrast(Appearance appearance) {
  return appearance == Appearance::highContrastLight || appearance == Appearance::highContrastDark;
}

/// What becomes of a translucent part's alpha under an appearance: where contrast is wanted, it is
/// less so.
constexpr double visibleAlpha(double alpha, Appearance appearance) {
  return hasHighContrast(appearance) ? std::min(1.0, 2 * alpha) : alpha;
}

/// A colour, either fixed or the appearance's own label colour. Components lie in 0…1.
class NSColor {
 public:
  static constexpr NSColor clearColor() { return {0, 0, 0, 0}; }
  static constexpr NSColor whiteColor() { return {1, 1, 1, 1}; }
  static constexpr NSColor grayColor() { return {0.5, 0.5, 0.5, 1}; }
  static constexpr NSColor colorWithRGBA(double red, double green, double blue, double alpha) {
    return {red, green, blue, alpha};
  }

  /// The colour of text: dark on a light appearance, light on a dark one.
  static constexpr NSColor labelColor() {
    NSColor color{0, 0, 0, 1};
    color.followsAppearance_ = true;
    return color;
  }

  /// The same colour with another alpha, of which the label colour shows its own share.
  constexpr NSColor colorWithAlphaComponent(double alpha) const {
    NSColor color = *this;
    color.alpha_ = alpha;
    return color;
  }

  /// The fixed colour that is drawn under an appearance.
  constexpr NSColor resolved(Appearance appearance) const {
    if (!followsAppearance_) return *this;
    const double level = isDark(appearance) ? 1.0 : 0.0;
    return {level, level, level, visibleAlpha(alpha_ * 0.85, appearance)};
  }

  constexpr double red() const { return red_; }
  constexpr double green() const { return green_; }
  constexpr double blue() const { return blue_; }
  constexpr double alpha() const { return alpha_; }
  bool operator==(const NSColor&) const = default;

 private:
  constexpr NSColor(double red, double green, double blue, double alpha)
      : red_(red), green_(green), blue_(blue), alpha_(alpha) {}

  double red_;
  double green_;
  double blue_;
  double alpha_;
  bool followsAppearance_ = false;
};

}  // namespace platform
