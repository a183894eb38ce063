// Dates as texts (patterns of Unicode Technical Standard 35, Dates).
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/date.h"

namespace platform {

/// Reads and writes dates of the Gregorian calendar in the two patterns that are in use.
class NSDateFormatter {
 public:
  void setDateFormat(std::string pattern) { pattern_ = std::move(pattern); }

  /// Reads "yyyyMMdd'T'HHmmssZZZZZ", with "Z", "+01:00", "+0100" or "+01" for the zone. None when
  /// the text does not match as a whole, is no date of the calendar, or for any other pattern.
  std::optional<Date> dateFromString(std::string_view text) const;

  /// Writes "yyyy-MM-dd HH-mm-ss" in the time zone that the system has now; none for any other
  /// pattern.
  std::optional<std::string> stringFromDate(Date date) const;

 private:
  std::string pattern_;
};

}  // namespace platform
