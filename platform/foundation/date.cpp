#include "platform/foundation/date.h"

#include <array>
#include <cmath>
#include <cstdio>

namespace platform {

std::optional<std::string> NSDateComponentsFormatter::stringFromTimeInterval(
    TimeInterval seconds) const {
  // Beyond this no sensible duration is left, and whole seconds are still exact.
  constexpr double longest = 9007199254740992.0;
  if (!std::isfinite(seconds) || std::fabs(seconds) > longest) return std::nullopt;

  struct Unit {
    std::uint64_t flag;
    std::int64_t seconds;
  };
  constexpr std::array<Unit, 3> units = {
      {{NSCalendarUnitHour, 3600}, {NSCalendarUnitMinute, 60}, {NSCalendarUnitSecond, 1}}};
  const bool pads =
      (zeroFormattingBehavior_ & NSDateComponentsFormatterZeroFormattingBehaviorPad) != 0;

  auto left = static_cast<std::int64_t>(std::trunc(std::fabs(seconds)));
  std::string text = seconds <= -1 ? "-" : "";
  bool first = true;
  for (const Unit& unit : units) {
    if ((allowedUnits_ & unit.flag) == 0) continue;
    std::array<char, 32> field{};
    std::snprintf(field.data(), field.size(), first && !pads ? "%lld" : "%02lld",
                  static_cast<long long>(left / unit.seconds));
    if (!first) text += ':';
    text += field.data();
    left %= unit.seconds;
    first = false;
  }
  return first ? std::nullopt : std::optional(text);
}

}  // namespace platform
