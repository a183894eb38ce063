#include "platform/foundation/date_formatter.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>
#include <vector>

namespace platform {
namespace {

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

/// A run of one letter, or (letter 0) a literal text.
struct Field {
  char letter = 0;
  std::size_t length = 0;
  std::string literal;

  bool is(char wanted, std::size_t width) const { return letter == wanted && length == width; }
};

std::vector<Field> fieldsOfPattern(std::string_view pattern) {
  std::vector<Field> fields;
  bool quoted = false;
  for (std::size_t at = 0; at < pattern.size(); ++at) {
    const char c = pattern[at];
    if (c == '\'') {
      quoted = !quoted;
    } else if (quoted || !isLetter(c)) {
      fields.push_back({0, 1, std::string(1, c)});
    } else if (at > 0 && pattern[at - 1] == c && !fields.empty() && fields.back().letter == c) {
      ++fields.back().length;
    } else {
      fields.push_back({c, 1, {}});
    }
  }
  return fields;
}

/// Takes exactly that many digits off the front; none when there are fewer.
std::optional<int> takeNumber(std::string_view& text, std::size_t digits) {
  if (text.size() < digits || digits > 4) return std::nullopt;
  int number = 0;
  for (const char c : text.substr(0, digits)) {
    if (!isDigit(c)) return std::nullopt;
    number = number * 10 + (c - '0');
  }
  text.remove_prefix(digits);
  return number;
}

/// Takes a zone off the front: its offset from UTC (ISO 8601), in seconds.
std::optional<int> takeZone(std::string_view& text) {
  if (text.starts_with('Z')) {
    text.remove_prefix(1);
    return 0;
  }
  if (!text.starts_with('+') && !text.starts_with('-')) return std::nullopt;
  const int sign = text.front() == '+' ? 1 : -1;
  text.remove_prefix(1);
  const auto hours = takeNumber(text, 2);
  if (!hours || *hours > 23) return std::nullopt;
  int minutes = 0;
  const bool colon = text.starts_with(':');
  if (colon || (!text.empty() && isDigit(text.front()))) {
    if (colon) text.remove_prefix(1);
    const auto found = takeNumber(text, 2);
    if (!found || *found > 59) return std::nullopt;
    minutes = *found;
  }
  return sign * (*hours * 60 + minutes) * 60;
}

struct Parts {
  int year = 1970;
  int month = 1;
  int day = 1;
  int hour = 0;
  int minute = 0;
  int second = 0;
  std::optional<int> offset;  // seconds east of UTC

  int* find(const Field& field) {
    if (field.is('y', 4)) return &year;
    if (field.is('M', 2)) return &month;
    if (field.is('d', 2)) return &day;
    if (field.is('H', 2)) return &hour;
    if (field.is('m', 2)) return &minute;
    if (field.is('s', 2)) return &second;
    return nullptr;
  }
};

std::optional<Date> dateFromParts(const Parts& parts) {
  const std::chrono::year_month_day day(std::chrono::year(parts.year),
                                        std::chrono::month(static_cast<unsigned>(parts.month)),
                                        std::chrono::day(static_cast<unsigned>(parts.day)));
  if (!day.ok() || parts.hour > 23 || parts.minute > 59 || parts.second > 59 || !parts.offset) {
    return std::nullopt;
  }
  const auto days = std::chrono::sys_days(day).time_since_epoch().count();
  const int clock = (parts.hour * 60 + parts.minute) * 60 + parts.second;
  return Date{static_cast<double>(days) * 86400.0 + clock - *parts.offset};
}

std::string padded(int number, std::size_t width) {
  std::string digits = std::to_string(number);
  return std::string(width - std::min(width, digits.size()), '0') + digits;
}

}  // namespace

std::optional<Date> NSDateFormatter::dateFromString(std::string_view text) const {
  Parts parts;
  for (const Field& field : fieldsOfPattern(pattern_)) {
    if (field.letter == 0) {
      if (!text.starts_with(field.literal)) return std::nullopt;
      text.remove_prefix(field.literal.size());
    } else if (field.is('Z', 5)) {
      parts.offset = takeZone(text);
    } else if (int* part = parts.find(field)) {
      const auto number = takeNumber(text, field.length);
      if (!number) return std::nullopt;
      *part = *number;
    } else {
      return std::nullopt;
    }
  }
  return text.empty() ? dateFromParts(parts) : std::nullopt;
}

std::optional<std::string> NSDateFormatter::stringFromDate(Date date) const {
  const double whole = std::floor(date.timeIntervalSince1970);
  if (!(std::abs(whole) < 1e11)) return std::nullopt;  // beyond four-digit years anyway
  const auto seconds = static_cast<std::time_t>(whole);
  std::tm local{};
  if (localtime_r(&seconds, &local) == nullptr) return std::nullopt;
  Parts parts{local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
              local.tm_min,         local.tm_sec,     std::nullopt};
  std::string text;
  for (const Field& field : fieldsOfPattern(pattern_)) {
    const int* part = parts.find(field);
    if (field.letter != 0 && part == nullptr) return std::nullopt;
    text += part != nullptr ? padded(*part, field.length) : field.literal;
  }
  return text;
}

}  // namespace platform
