#include "platform/foundation/character_set.h"

#include <utf8proc.h>

#include <optional>

namespace platform {
namespace {

struct Character {
  std::size_t position = 0;
  std::size_t length = 1;
  bool belongs = false;
};

Character characterAt(std::string_view text, std::size_t position, NSCharacterSet set) {
  const auto first = static_cast<unsigned char>(text[position]);
  if (first < 0x80) return {position, 1, set(first)};
  utf8proc_int32_t character = -1;
  const utf8proc_ssize_t length =
      utf8proc_iterate(reinterpret_cast<const utf8proc_uint8_t*>(text.data()) + position,
                       static_cast<utf8proc_ssize_t>(text.size() - position), &character);
  if (length <= 0) return {position, 1, false};
  return {position, static_cast<std::size_t>(length), set(static_cast<char32_t>(character))};
}

utf8proc_category_t category(char32_t character) {
  return utf8proc_category(static_cast<utf8proc_int32_t>(character));
}

}  // namespace

bool controlCharacterSet(char32_t character) {
  if (character >= 0x20 && character < 0x7F) return false;
  const utf8proc_category_t found = category(character);
  return found == UTF8PROC_CATEGORY_CC || found == UTF8PROC_CATEGORY_CF;
}

bool newlineCharacterSet(char32_t character) {
  return (character >= 0x0A && character <= 0x0D) || character == 0x85 || character == 0x2028 ||
         character == 0x2029;
}

bool whitespaceAndNewlineCharacterSet(char32_t character) {
  if (character == ' ' || character == '\t' || newlineCharacterSet(character)) return true;
  if (character < 0x80) return false;
  return category(character) == UTF8PROC_CATEGORY_ZS;
}

std::vector<std::string_view> componentsSeparatedByCharactersInSet(std::string_view text,
                                                                   NSCharacterSet set) {
  std::vector<std::string_view> components;
  std::size_t start = 0;
  for (std::size_t position = 0; position < text.size();) {
    const Character character = characterAt(text, position, set);
    position += character.length;
    if (!character.belongs) continue;
    components.push_back(text.substr(start, character.position - start));
    start = position;
  }
  components.push_back(text.substr(start));
  return components;
}

std::string_view stringByTrimmingCharactersInSet(std::string_view text, NSCharacterSet set) {
  std::optional<std::size_t> start;
  std::size_t end = 0;
  for (std::size_t position = 0; position < text.size();) {
    const Character character = characterAt(text, position, set);
    position += character.length;
    if (character.belongs) continue;
    if (!start) start = character.position;
    end = position;
  }
  return start ? text.substr(*start, end - *start) : std::string_view();
}

}  // namespace platform
