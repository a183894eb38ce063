// The programme playlist (HLS, RFC 8216): its segments, when the chosen one starts, and when the
// next one is due.
#include <algorithm>
#include <charconv>
#include <cmath>

#include "platform/foundation/character_set.h"
#include "platform/foundation/date_formatter.h"
#include "platform/foundation/text.h"
#include "platform/platform.h"
#include "radio/beats1_info_loader.h"

namespace virelune {
namespace {

/// Where the needle (in lower-case ASCII) first occurs, whatever the case; npos when nowhere.
std::size_t findIgnoringCase(std::string_view text, std::string_view needle) {
  const auto isSame = [](char a, char b) { return platform::lowerCaseASCII(a) == b; };
  const auto found = std::search(text.begin(), text.end(), needle.begin(), needle.end(), isSame);
  return found != text.end() ? static_cast<std::size_t>(found - text.begin())
                             : std::string_view::npos;
}

bool endsWithIgnoringCase(std::string_view text, std::string_view ending) {
  return text.size() >= ending.size() &&
         findIgnoringCase(text.substr(text.size() - ending.size()), ending) == 0;
}

/// The number at the start of a text, after blanks; 0 when there is none or it is out of range.
double numberFromText(std::string_view text) {
  text.remove_prefix(std::min(text.find_first_not_of(" \t"), text.size()));
  if (text.starts_with('+')) text.remove_prefix(1);
  double number = 0;
  const auto parsed = std::from_chars(text.data(), text.data() + text.size(), number);
  return parsed.ec == std::errc() && std::isfinite(number) ? number : 0;
}

std::string_view lastPiece(std::string_view text, char separator) {
  return text.substr(text.rfind(separator) + 1);  // npos + 1 is 0
}

}  // namespace

std::optional<platform::Array> VLBeats1InfoLoader::playlistTracksFromText(std::string_view text) {
  platform::Array tracks;
  for (const std::string_view line :
       platform::componentsSeparatedByCharactersInSet(text, platform::newlineCharacterSet)) {
    if (endsWithIgnoringCase(line, ".aac")) tracks.emplace_back(std::string(line));
  }
  if (tracks.empty()) return std::nullopt;
  return tracks;
}

std::optional<platform::Date> VLBeats1InfoLoader::trackDateFromName(std::string_view name) {
  std::string_view stem = lastPiece(name, '/');
  // A dot in front begins a hidden name, not an extension.
  if (const std::size_t dot = stem.rfind('.'); dot != std::string_view::npos && dot > 0) {
    stem = stem.substr(0, dot);
  }
  const std::string_view start = lastPiece(stem, '-');
  if (start.empty()) return std::nullopt;
  platform::NSDateFormatter formatter;
  formatter.setDateFormat("yyyyMMdd'T'HHmmssZZZZZ");
  return formatter.dateFromString(start);
}

double VLBeats1InfoLoader::infoPlaylistDuration() const {
  const auto playlist = infoTrackTextForKey("playlist");
  if (!playlist) return 0;
  for (const std::string_view line :
       platform::componentsSeparatedByCharactersInSet(*playlist, platform::newlineCharacterSet)) {
    if (findIgnoringCase(line, "targetduration") == std::string_view::npos) continue;
    const double duration = numberFromText(lastPiece(line, ':'));
    if (duration > 0) return duration;
  }
  return 0;
}

double VLBeats1InfoLoader::infoPlaylistLoadingTimeInterval() const {
  const auto date = infoTrackValueForKey_andClass<platform::Date>("date");
  const platform::RunLoop* runLoop = platform::current().runLoop;
  if (!date || runLoop == nullptr) return 0;
  const double duration = infoPlaylistDuration();
  if (!(duration > 0)) return 0;
  return std::abs((*date + duration) - runLoop->date()) + 1.0;
}

}  // namespace virelune
