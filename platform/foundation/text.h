// Unicode texts: comparison and the display of foreign texts. Texts are UTF-8.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// The text after full case folding and canonical decomposition (Unicode, chapter 3.13), the same
/// for all texts that caseInsensitiveEqual takes as equal; none when it is not UTF-8.
std::optional<std::string> foldedText(std::string_view text);

/// True when both texts are equal after full case folding and canonical decomposition
/// (Unicode, chapter 3.13). Texts that are not UTF-8 are equal only byte for byte. Takes as long as
/// the shorter text needs, however long the other one is.
bool caseInsensitiveEqual(std::string_view a, std::string_view b);

/// True when the part occurs somewhere in the text in the sense of caseInsensitiveEqual, as whole
/// characters: "cafe" does not occur in "café". An empty part occurs nowhere.
bool caseInsensitiveContains(std::string_view text, std::string_view part);

/// The letters A to Z in lower case, all else as it is: for names that protocols define.
constexpr char lowerCaseASCII(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}
std::string lowerCaseASCII(std::string_view text);

/// True when the bytes are well-formed UTF-8.
bool isValidUTF8(std::string_view bytes);

/// The bytes with everything that is not well-formed UTF-8 replaced by U+FFFD.
std::string repairedUTF8(std::string_view bytes);

/// The beginning of a text: at most maximumBytes of it, cut between characters as a reader sees
/// them (grapheme clusters), or inside of the first one when it alone is longer.
std::string_view beginningOfText(std::string_view text, std::size_t maximumBytes);

/// A text as one label can show it: at most maximumBytes of it, cut at a character, with control
/// characters other than line feeds turned into blanks.
std::string displayableText(std::string_view text, std::size_t maximumBytes);

}  // namespace platform
