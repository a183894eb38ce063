#include "platform/foundation/date_formatter.h"

#include <array>
#include <chrono>
#include <cmath>
#include <ctime>

namespace platform {
namespace {

constexpr std::string_view readPattern = "yyyyMMdd'T'HHmmssZZZZZ";
constexpr std::string_view writtenPattern = "yyyy-MM-dd HH-mm-ss";

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool take(std::string_view& text, char expected) {
  if (!text.starts_with(expected)) return false;
  text.remove_prefix(1);
  return true;
}

/// Takes exactly that many digits off the front; none when there are fewer.
std::optional<int> takeNumber(std::string_view& text, std::size_t digits) {
  if (text.size() < digits) return std::nullopt;
  int number = 0;
  for (const char c : text.substr(0, digits)) {
    if (!isDigit(c)) return std::nullopt;
    number = number * 10 + (c - '0');
  }
  text.remove_prefix(digits);
  return number;
}

/// The offset from UTC (ISO 8601) that the text is, in seconds.
std::optional<int> zoneOffset(std::string_view text) {
  if (text == "Z") return 0;
  const int sign = text.starts_with('-') ? -1 : 1;
  if (!take(text, '+') && !take(text, '-')) return std::nullopt;
  const auto hours = takeNumber(text, 2);
  if (!hours || *hours > 23) return std::nullopt;
  if (text.empty()) return sign * *hours * 3600;
  take(text, ':');
  const auto minutes = takeNumber(text, 2);
  if (!minutes || *minutes > 59 || !text.empty()) return std::nullopt;
  return sign * (*hours * 60 + *minutes) * 60;
}

}  // namespace

std::optional<Date> NSDateFormatter::dateFromString(std::string_view text) const {
  if (pattern_ != readPattern) return std::nullopt;
  const auto year = takeNumber(text, 4), month = takeNumber(text, 2), day = takeNumber(text, 2);
  if (!year || !month || !day || !take(text, 'T')) return std::nullopt;
  const auto hour = takeNumber(text, 2), minute = takeNumber(text, 2), second = takeNumber(text, 2);
  if (!hour || !minute || !second) return std::nullopt;
  const auto offset = zoneOffset(text);
  const std::chrono::year_month_day date(std::chrono::year(*year),
                                         std::chrono::month(static_cast<unsigned>(*month)),
                                         std::chrono::day(static_cast<unsigned>(*day)));
  if (!offset || !date.ok() || *hour > 23 || *minute > 59 || *second > 59) return std::nullopt;
  const auto days = std::chrono::sys_days(date).time_since_epoch().count();
  const int clock = (*hour * 60 + *minute) * 60 + *second;
  return Date{static_cast<double>(days) * 86400.0 + clock - *offset};
}

std::optional<std::string> NSDateFormatter::stringFromDate(Date date) const {
  const double whole = std::floor(date.timeIntervalSince1970);
  // Beyond this the year has more than four digits.
  if (pattern_ != writtenPattern || !(std::abs(whole) < 1e11)) return std::nullopt;
  const auto seconds = static_cast<std::time_t>(whole);
  std::tm local{};
  ::tzset();  // the zone may have changed since the last time
  if (::localtime_r(&seconds, &local) == nullptr) return std::nullopt;
  std::array<char, 32> text{};
  return std::string(text.data(),
                     std::strftime(text.data(), text.size(), "%Y-%m-%d %H-%M-%S", &local));
}

}  // namespace platform
