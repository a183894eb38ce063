// The values that actions take, as people write them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace desktop {

/// 0 to 100 for "0" to "5" in halves ("4.5", "4,5", "4½"); for "+" and "-" half a star more or less
/// than now, within those bounds. None for anything else.
std::optional<std::int64_t> ratingFromText(std::string_view text, std::int64_t now);

/// The other way round: "4.5" for 90; what lies between halves is rounded.
std::string textFromRating(std::int64_t rating);

/// "on", "off" or "toggle", which is what an empty text means. None for anything else.
std::optional<bool> switchFromText(std::string_view text, bool now);

/// A place on a scale: "30" is there, "+5" and "-5" are so far from now, "50%" is a part of the
/// whole and "+5%" a part of the whole from now. None for anything else, and for a part of an
/// unknown (0) whole. Never below 0; above the whole when the text says so.
std::optional<double> amountFromText(std::string_view text, double now, double whole);

}  // namespace desktop
