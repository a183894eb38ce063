// Points in time and the texts made of durations.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <string>

namespace platform {

using TimeInterval = double;  ///< seconds

/// A point in time, in seconds since 1970-01-01 00:00:00 UTC.
struct Date {
  TimeInterval timeIntervalSince1970 = 0;

  Date operator+(TimeInterval seconds) const { return {timeIntervalSince1970 + seconds}; }
  TimeInterval operator-(Date earlier) const {
    return timeIntervalSince1970 - earlier.timeIntervalSince1970;
  }
  auto operator<=>(const Date&) const = default;
};

inline constexpr std::uint64_t NSCalendarUnitHour = 32;
inline constexpr std::uint64_t NSCalendarUnitMinute = 64;
inline constexpr std::uint64_t NSCalendarUnitSecond = 128;
inline constexpr std::uint64_t NSDateComponentsFormatterZeroFormattingBehaviorPad = 65536;

/// Writes a duration in positional style ("01:05"), the fraction of a second cut off. With the
/// padding behaviour every field has at least two digits. The largest allowed field takes what
/// is left over, so 3600 s without hours is 60:00.
class NSDateComponentsFormatter {
 public:
  void setAllowedUnits(std::uint64_t units) { allowedUnits_ = units; }
  void setZeroFormattingBehavior(std::uint64_t behavior) { zeroFormattingBehavior_ = behavior; }

  /// None for a time that is not finite or when no unit is allowed. Negative times carry a "-".
  std::optional<std::string> stringFromTimeInterval(TimeInterval seconds) const;

 private:
  std::uint64_t allowedUnits_ = NSCalendarUnitHour | NSCalendarUnitMinute | NSCalendarUnitSecond;
  std::uint64_t zeroFormattingBehavior_ = 0;
};

}  // namespace platform
