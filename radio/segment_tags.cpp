// The head of an audio segment. It begins with an ID3v2 tag, which is not taken apart by its
// structure: frames are found by their identifiers and the artwork's address by its beginning and
// its end, so that a tag that is cut short does no harm. Sizes are read as plain numbers: a frame
// of 128 bytes or more whose size is written in the syncsafe form gives no text.
#include <cstring>

#include "platform/foundation/character_set.h"
#include "platform/foundation/text.h"
#include "radio/beats1_info_loader.h"

namespace virelune {
namespace {

// A frame: identifier, size (4 bytes, big-endian), flags (2 bytes), content.
constexpr std::size_t sizeLength = 4;
constexpr std::size_t flagsLength = 2;
/// An identifier this close to the end is not looked for: its size would not fit any more.
constexpr std::size_t tailLength = 8;

constexpr char textIsUTF8 = 3;  // the encoding byte before a frame's text

/// Where the needle first occurs at or after a position; npos when nowhere.
std::size_t find(std::string_view bytes, std::string_view needle, std::size_t from = 0) {
  const std::string_view rest = bytes.substr(from);
  if (rest.empty()) return std::string_view::npos;  // no bytes may mean no address either
  const void* found = memmem(rest.data(), rest.size(), needle.data(), needle.size());
  if (found == nullptr) return std::string_view::npos;
  return static_cast<std::size_t>(static_cast<const char*>(found) - bytes.data());
}

std::uint32_t bigEndianNumber(std::string_view bytes) {
  std::uint32_t number = 0;
  for (const char byte : bytes) number = number << 8U | static_cast<unsigned char>(byte);
  return number;
}

std::string withoutControlCharacters(std::string_view text) {
  std::string joined;
  joined.reserve(text.size());
  for (const std::string_view piece :
       platform::componentsSeparatedByCharactersInSet(text, platform::controlCharacterSet)) {
    if (piece.data() != text.data()) joined += ' ';
    joined += piece;
  }
  return joined;
}

}  // namespace

VLBeats1InfoLoader::BytesRange VLBeats1InfoLoader::trackInfoBytesRangeForKey_fromData(
    std::string_view identifier, const platform::Data& data) {
  const std::string_view bytes = data.view();
  if (identifier.empty() || bytes.size() < tailLength) return {};
  const std::size_t found = find(bytes.substr(0, bytes.size() - tailLength), identifier);
  if (found == std::string_view::npos) return {};
  const std::size_t sizeStart = found + identifier.size();
  const std::uint32_t size = bigEndianNumber(bytes.substr(sizeStart, sizeLength));
  if (size == 0) return {};
  return {sizeStart + sizeLength + flagsLength, size};
}

std::optional<std::string> VLBeats1InfoLoader::trackInfoTextForKey_fromData(
    std::string_view identifier, const platform::Data& data) {
  const BytesRange range = trackInfoBytesRangeForKey_fromData(identifier, data);
  if (range.location == BytesRange::notFound) return std::nullopt;
  if (range.location + range.length > data.length()) return std::nullopt;
  std::string_view text = data.view().substr(range.location, range.length);
  if (!platform::isValidUTF8(text)) return std::nullopt;
  if (text.starts_with(textIsUTF8)) text.remove_prefix(1);
  const std::string cleaned = withoutControlCharacters(text);
  const std::string_view trimmed = platform::stringByTrimmingCharactersInSet(
      cleaned, platform::whitespaceAndNewlineCharacterSet);
  if (trimmed.empty()) return std::nullopt;
  return std::string(trimmed);
}

std::optional<std::string> VLBeats1InfoLoader::trackInfoArtworkWebAddressFromData(
    const platform::Data& data) {
  constexpr std::string_view mark = "artwork";
  constexpr std::string_view beginning = "http";
  constexpr std::string_view ending = ".jpg";
  const std::string_view bytes = data.view();
  const std::size_t marked = find(bytes, mark);
  if (marked == std::string_view::npos) return std::nullopt;
  const std::size_t begin = find(bytes, beginning, marked + mark.size());
  if (begin == std::string_view::npos) return std::nullopt;
  const std::size_t end = find(bytes, ending, begin + beginning.size());
  if (end == std::string_view::npos) return std::nullopt;
  // A zero byte ends the text that the ending belongs to.
  const std::string_view span = bytes.substr(begin, end - begin);
  const std::string_view address = span.substr(0, span.find('\0'));
  if (!platform::isValidUTF8(address)) return std::nullopt;
  return std::string(address).append(ending);
}

}  // namespace virelune
