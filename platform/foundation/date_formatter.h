// Dates as texts in a fixed pattern (Unicode Technical Standard 35, Dates).
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/date.h"

namespace platform {

/// Reads and writes dates of the Gregorian calendar. The patterns' fields are yyyy, MM, dd, HH,
/// mm, ss, each with as many digits as letters, and ZZZZZ; text between apostrophes, and
/// characters that are no letters, stand for themselves.
class NSDateFormatter {
 public:
  void setDateFormat(std::string pattern) { pattern_ = std::move(pattern); }

  /// Reads a date whose zone is in the text: "Z", "+01:00", "+0100" or "+01". None when the whole
  /// text does not match, is no date of the calendar, or the pattern has no zone.
  std::optional<Date> dateFromString(std::string_view text) const;

  /// Writes a date in the local time zone; none when the pattern has a field of another kind.
  std::optional<std::string> stringFromDate(Date date) const;

 private:
  std::string pattern_;
};

}  // namespace platform
