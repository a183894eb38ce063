#include "desktop/actions/values.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace desktop {

namespace {

constexpr std::int64_t most = 100;
constexpr std::int64_t star = 20;
constexpr std::int64_t halfStar = 10;

/// Digits, with a fraction or without; none for anything else, be it a sign.
std::optional<double> numberFromText(std::string_view text) {
  if (text.empty() || text.find_first_not_of("0123456789.") != std::string_view::npos) {
    return std::nullopt;
  }
  double number = 0;
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, number);
  return error == std::errc() && rest == end ? std::optional(number) : std::nullopt;
}

}  // namespace

std::optional<std::int64_t> ratingFromText(std::string_view text, std::int64_t now) {
  if (text == "+") return std::min(now / halfStar * halfStar + halfStar, most);
  if (text == "-") return std::max((now + halfStar - 1) / halfStar * halfStar - halfStar, {});
  std::string decimal(text);
  std::replace(decimal.begin(), decimal.end(), ',', '.');
  constexpr std::string_view half = "½";
  if (decimal.ends_with(half)) {
    decimal.replace(decimal.size() - half.size(), half.size(), ".5");
    if (decimal.size() == 2) decimal.insert(0, "0");
  }
  const auto stars = numberFromText(decimal);
  if (!stars || *stars > 5 || *stars * 2 != std::floor(*stars * 2)) return std::nullopt;
  return static_cast<std::int64_t>(*stars * star);
}

std::string textFromRating(std::int64_t rating) {
  const std::int64_t halves = (std::clamp<std::int64_t>(rating, 0, most) + halfStar / 2) / halfStar;
  return std::to_string(halves / 2) + (halves % 2 != 0 ? ".5" : "");
}

std::optional<bool> switchFromText(std::string_view text, bool now) {
  if (text.empty() || text == "toggle") return !now;
  if (text == "on") return true;
  if (text == "off") return false;
  return std::nullopt;
}

std::optional<double> amountFromText(std::string_view text, double now, double whole) {
  const char sign = !text.empty() && (text[0] == '+' || text[0] == '-') ? text[0] : '\0';
  if (sign != '\0') text.remove_prefix(1);
  const bool isPart = text.ends_with('%');
  if (isPart) text.remove_suffix(1);
  auto amount = numberFromText(text);
  if (!amount || (isPart && whole <= 0)) return std::nullopt;
  if (isPart) *amount *= whole / 100;
  if (sign == '+') return now + *amount;
  return std::max(sign == '-' ? now - *amount : *amount, 0.0);
}

}  // namespace desktop
