// Character sets, and splitting and trimming texts by them. Texts are UTF-8.
#pragma once

#include <string_view>
#include <vector>

namespace platform {

/// Answers whether a Unicode code point belongs to the set. Bytes that are not UTF-8 belong to
/// none.
using NSCharacterSet = bool (*)(char32_t);

/// General categories Cc and Cf.
bool controlCharacterSet(char32_t character);
/// U+000A to U+000D, U+0085, U+2028 and U+2029.
bool newlineCharacterSet(char32_t character);
/// The newlines, the tab and general category Z.
bool whitespaceAndNewlineCharacterSet(char32_t character);

/// The pieces between the characters of the set, empty ones included; at least one.
std::vector<std::string_view> componentsSeparatedByCharactersInSet(std::string_view text,
                                                                   NSCharacterSet set);

/// The text without the characters of the set at both ends.
std::string_view stringByTrimmingCharactersInSet(std::string_view text, NSCharacterSet set);

}  // namespace platform
