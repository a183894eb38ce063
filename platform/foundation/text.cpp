#include "platform/foundation/text.h"

#include <utf8proc.h>

#include <algorithm>
#include <array>
#include <span>
#include <utility>
#include <vector>

namespace platform {

namespace {

const utf8proc_uint8_t* unicodeBytes(std::string_view text) {
  return reinterpret_cast<const utf8proc_uint8_t*>(text.data());
}

/// The character at a position and its length in bytes; a length of 0 for malformed bytes.
std::pair<utf8proc_int32_t, std::size_t> characterAt(std::string_view text, std::size_t position) {
  utf8proc_int32_t character = -1;
  const std::string_view rest = text.substr(position);
  const utf8proc_ssize_t length =
      utf8proc_iterate(unicodeBytes(rest), static_cast<utf8proc_ssize_t>(rest.size()), &character);
  return length > 0 ? std::pair(character, static_cast<std::size_t>(length))
                    : std::pair(utf8proc_int32_t{-1}, std::size_t{0});
}

/// True when a mark that belongs to the character before begins at the position.
bool isCombiningAt(std::string_view text, std::size_t position) {
  const utf8proc_int32_t character = characterAt(text, position).first;
  const utf8proc_category_t category = utf8proc_category(character);
  return category == UTF8PROC_CATEGORY_MN || category == UTF8PROC_CATEGORY_MC ||
         category == UTF8PROC_CATEGORY_ME;
}

constexpr std::string_view replacementCharacter = "\xEF\xBF\xBD";

constexpr std::size_t longestDecomposition = 32;
/// Folding and decomposition make a text at most this many times longer or shorter.
constexpr std::size_t longestFolding = 3;

int combiningClass(utf8proc_int32_t character) {
  return utf8proc_get_property(character)->combining_class;
}

/// Appends marks in the canonical order and empties them. The library's own way to that order takes
/// time that grows with the square of their number.
void appendInOrder(std::string& text, std::vector<utf8proc_int32_t>& characters) {
  if (characters.size() > 1) std::ranges::stable_sort(characters, {}, combiningClass);
  for (const auto character : characters) {
    std::array<utf8proc_uint8_t, 4> bytes{};
    const auto length = utf8proc_encode_char(character, bytes.data());
    text.append(bytes.begin(), bytes.begin() + length);
  }
  characters.clear();
}

}  // namespace

std::optional<std::string> foldedText(std::string_view text) {
  std::string folded;
  folded.reserve(text.size());
  std::vector<utf8proc_int32_t> marks;  // since the last character that stays where it is
  for (std::size_t position = 0; position < text.size();) {
    const auto [character, length] = characterAt(text, position);
    if (length == 0) return std::nullopt;
    position += length;
    std::array<utf8proc_int32_t, longestDecomposition> parts{};
    int boundary = 0;
    const auto count = utf8proc_decompose_char(
        character, parts.data(), static_cast<utf8proc_ssize_t>(parts.size()),
        static_cast<utf8proc_option_t>(UTF8PROC_DECOMPOSE | UTF8PROC_CASEFOLD), &boundary);
    if (count < 0 || std::cmp_greater(count, parts.size())) return std::nullopt;
    for (const auto part : std::span(parts).first(static_cast<std::size_t>(count))) {
      if (combiningClass(part) == 0) appendInOrder(folded, marks);
      marks.push_back(part);
    }
  }
  appendInOrder(folded, marks);
  return folded;
}

bool caseInsensitiveEqual(std::string_view a, std::string_view b) {
  if (a == b) return true;
  const auto [shorter, longer] = std::minmax({a.size(), b.size()});
  if (longer / longestFolding / longestFolding > shorter) return false;
  const auto foldedA = foldedText(a);
  const auto foldedB = foldedText(b);
  return foldedA && foldedB && *foldedA == *foldedB;
}

bool caseInsensitiveContains(std::string_view text, std::string_view part) {
  if (part.empty()) return false;
  const auto foldedWhole = foldedText(text);
  const auto foldedPart = foldedText(part);
  if (!foldedWhole || !foldedPart) return text.find(part) != std::string_view::npos;
  for (std::size_t found = foldedWhole->find(*foldedPart); found != std::string::npos;
       found = foldedWhole->find(*foldedPart, found + 1)) {
    if (!isCombiningAt(*foldedWhole, found + foldedPart->size())) return true;
  }
  return false;
}

bool isValidUTF8(std::string_view bytes) {
  for (std::size_t position = 0; position < bytes.size();) {
    const std::size_t length = characterAt(bytes, position).second;
    if (length == 0) return false;
    position += length;
  }
  return true;
}

std::string repairedUTF8(std::string_view bytes) {
  std::string text;
  text.reserve(bytes.size());
  for (std::size_t position = 0; position < bytes.size();) {
    const std::size_t length = characterAt(bytes, position).second;
    text += length == 0 ? replacementCharacter : bytes.substr(position, length);
    position += length == 0 ? 1 : length;
  }
  return text;
}

std::string_view beginningOfText(std::string_view text, std::size_t maximumBytes) {
  if (text.size() <= maximumBytes) return text;
  std::size_t position = 0;
  std::size_t cluster = 0;  // where the one that holds the position begins
  utf8proc_int32_t before = -1;
  utf8proc_int32_t state = 0;
  while (true) {
    const auto [character, length] = characterAt(text, position);
    if (before < 0 || character < 0 ||
        utf8proc_grapheme_break_stateful(before, character, &state)) {
      cluster = position;
    }
    const std::size_t end = position + std::max<std::size_t>(length, 1);
    if (end > maximumBytes) return text.substr(0, cluster > 0 ? cluster : position);
    position = end;
    before = character;
  }
}

std::string lowerCaseASCII(std::string_view text) {
  std::string lower(text);
  for (char& c : lower) c = lowerCaseASCII(c);
  return lower;
}

std::string displayableText(std::string_view text, std::size_t maximumBytes) {
  std::string shown;
  shown.reserve(text.size() < maximumBytes ? text.size() : maximumBytes);
  for (std::size_t position = 0; position < text.size();) {
    const auto [character, length] = characterAt(text, position);
    const std::size_t step = length == 0 ? 1 : length;
    if (position + step > maximumBytes) break;
    if (length == 0) {
      shown += replacementCharacter;
    } else if (character != '\n' && utf8proc_category(character) == UTF8PROC_CATEGORY_CC) {
      shown += ' ';
    } else {
      shown += text.substr(position, length);
    }
    position += step;
  }
  return shown;
}

}  // namespace platform
