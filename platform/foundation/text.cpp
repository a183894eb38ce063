#include "platform/foundation/text.h"

#include <utf8proc.h>

#include <cstdlib>
#include <memory>

namespace platform {

namespace {

struct FreeMapped {
  void operator()(utf8proc_uint8_t* text) const { std::free(text); }  // NOLINT: the library's own
};

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

}  // namespace

std::optional<std::string> foldedText(std::string_view text) {
  // Folding can undo an order that decomposition made and the other way round, so both run in one
  // pass of the library.
  utf8proc_uint8_t* mapped = nullptr;
  const auto options = static_cast<utf8proc_option_t>(UTF8PROC_DECOMPOSE | UTF8PROC_CASEFOLD);
  const utf8proc_ssize_t length = utf8proc_map(
      unicodeBytes(text), static_cast<utf8proc_ssize_t>(text.size()), &mapped, options);
  const std::unique_ptr<utf8proc_uint8_t, FreeMapped> owner(mapped);
  if (length < 0) return std::nullopt;
  return std::string(reinterpret_cast<const char*>(mapped), static_cast<std::size_t>(length));
}

bool caseInsensitiveEqual(std::string_view a, std::string_view b) {
  if (a == b) return true;
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
