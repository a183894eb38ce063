#include "desktop/ratings/identity.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include "platform/foundation/text.h"
#include "platform/foundation/url.h"

namespace desktop {

namespace {

using std::string_view_literals::operator""sv;  // NOLINT: the lists below use it

// Addresses that end with the program that made them, and drives whose disc changes.
constexpr std::array temporarySchemes = {
    "about"sv, "av"sv,   "bd"sv,     "blob"sv, "bluray"sv, "cdda"sv,        "cdio"sv,
    "data"sv,  "dvd"sv,  "dvdnav"sv, "edl"sv,  "fd"sv,     "fdclose"sv,     "filesystem"sv,
    "lavfi"sv, "null"sv, "memory"sv, "pipe"sv, "screen"sv, "mediastream"sv, "vcd"sv};

constexpr std::array streamSchemes = {"http"sv, "https"sv, "icy"sv,  "mms"sv,  "mmsh"sv,
                                      "rtmp"sv, "rtmps"sv, "rtsp"sv, "rtsps"sv};

// Parameters that carry a session, a signature, an expiry or a secret, as media servers and
// content networks name them (in lower case).
constexpr std::array sessionParameters = {
    "access_token"sv, "accesstoken"sv, "api_key"sv,    "apikey"sv,        "auth"sv,
    "auth_token"sv,   "authtoken"sv,   "exp"sv,        "expire"sv,        "expires"sv,
    "expiry"sv,       "hdnea"sv,       "hdntl"sv,      "hdnts"sv,         "hmac"sv,
    "jsessionid"sv,   "jwt"sv,         "nonce"sv,      "key-pair-id"sv,   "phpsessid"sv,
    "policy"sv,       "session"sv,     "session_id"sv, "playsessionid"sv, "sessionid"sv,
    "sid"sv,          "sig"sv,         "signature"sv,  "ticket"sv,        "token"sv};
constexpr std::array sessionParameterPrefixes = {"x-amz-"sv, "x-goog-"sv, "x-plex-"sv};

template <std::size_t count>
bool contains(const std::array<std::string_view, count>& list, std::string_view text) {
  return std::find(list.begin(), list.end(), text) != list.end();
}

bool isTemporaryFile(std::string_view path) {
  for (const std::string_view folder : {"/tmp/"sv, "/var/tmp/"sv, "/dev/"sv, "/proc/"sv}) {
    if (path.starts_with(folder)) return true;
  }
  // Network mounts live in the run-time folder as well: /run/user/<id>/gvfs/<share>/…
  return path.starts_with("/run/user/") && path.find("/gvfs/") == std::string_view::npos;
}

std::optional<std::string> lastingFile(const std::string& path) {
  if (!path.starts_with('/') || path.ends_with('/') || isTemporaryFile(path)) return std::nullopt;
  const auto url = platform::URL::fileURLWithPath(path);
  return url ? std::optional(url->absoluteString()) : std::nullopt;
}

/// True when a parameter in the path or the query tells of a session. Subsonic servers (API
/// 1.13) salt a token anew each time and call the three parameters u, t and s.
bool hasSessionParameter(std::string_view pathAndQuery) {
  bool user = false, token = false, salt = false;
  for (std::size_t at = 0; at < pathAndQuery.size();) {
    const std::size_t end = std::min(pathAndQuery.find_first_of("/?&;~", at), pathAndQuery.size());
    const std::string_view parameter = pathAndQuery.substr(at, end - at);
    at = end + 1;
    const std::size_t equals = parameter.find('=');
    if (equals == std::string_view::npos) continue;
    const std::string name = platform::lowerCaseASCII(parameter.substr(0, equals));
    if (contains(sessionParameters, name)) return true;
    for (const std::string_view prefix : sessionParameterPrefixes) {
      if (name.starts_with(prefix)) return true;
    }
    user |= name == "u";
    token |= name == "t";
    salt |= name == "s";
  }
  return user && token && salt;
}

/// True for a server that some program on this machine has begun for the moment: Linux hands
/// out ports from 32768 upwards to those who ask for any.
bool isPassingLocalServer(std::string_view host) {
  const std::size_t bracket = host.rfind(']');
  const std::size_t colon = host.find(':', bracket == std::string_view::npos ? 0 : bracket);
  if (colon == std::string_view::npos) return false;
  const std::string_view name = host.substr(0, colon);
  if (name != "localhost" && name != "[::1]" && !name.starts_with("127.")) return false;
  constexpr unsigned firstEphemeralPort = 32768;
  unsigned port = 0;
  std::from_chars(host.data() + colon + 1, host.data() + host.size(), port);
  return port >= firstEphemeralPort;
}

/// scheme://host/path?query without user, password and fragment; none when it will not last.
std::optional<std::string> lastingWebAddress(const std::string& scheme, std::string_view rest) {
  rest = rest.substr(0, rest.find('#'));
  std::string_view authority = rest.substr(0, rest.find_first_of("/?"));
  const std::string_view pathAndQuery = rest.substr(authority.size());
  if (const auto at = authority.rfind('@'); at != std::string_view::npos) {
    authority.remove_prefix(at + 1);
  }
  const std::string host = platform::lowerCaseASCII(authority);
  if (isPassingLocalServer(host) || hasSessionParameter(pathAndQuery)) return std::nullopt;
  return scheme + "://" + host + std::string(pathAndQuery);
}

/// A name as keys hold it: folded, and on one line.
std::string keyText(std::string_view name) {
  std::string text = platform::foldedText(platform::repairedUTF8(name)).value_or("");
  std::replace(text.begin(), text.end(), '\n', ' ');
  return text;
}

}  // namespace

std::int64_t wholeSeconds(double length) {
  constexpr double longest = 1e9;
  return length > 0 && length < longest ? std::llround(length) : 0;
}

std::string pathOfFileAddress(std::string_view address) {
  // Not every player percent-encodes: what would begin a query or a fragment is part of the name.
  std::string_view rest = address.substr(address.find(':') + 1);
  if (rest.starts_with("//")) {
    rest.remove_prefix(2);
    const std::string_view host = rest.substr(0, rest.find('/'));
    if (!host.empty() && platform::lowerCaseASCII(host) != "localhost") return {};
    rest.remove_prefix(host.size());
  }
  std::string path = platform::percentDecoded(rest);
  return path.find('\0') == std::string::npos ? path : std::string();
}

bool areNamesakes(const TrackIdentity& a, const TrackIdentity& b) {
  const std::int64_t length = wholeSeconds(a.length), other = wholeSeconds(b.length);
  return length > 0 && other > 0 && std::abs(length - other) <= 1 &&
         keyText(a.title) == keyText(b.title) && keyText(a.artist) == keyText(b.artist) &&
         keyText(a.album) == keyText(b.album);
}

std::optional<std::string> lastingAddress(const TrackIdentity& track) {
  const std::string& address = track.address;
  if (address.starts_with('/')) return lastingFile(address);
  const std::size_t colon = address.find(':');
  if (colon == std::string::npos || colon == 0) return std::nullopt;
  const std::string scheme = platform::lowerCaseASCII(std::string_view(address).substr(0, colon));
  if (contains(temporarySchemes, scheme)) return std::nullopt;
  if (scheme == "file") return lastingFile(pathOfFileAddress(address));

  const bool live = wholeSeconds(track.length) == 0 && contains(streamSchemes, scheme);
  if (live && !track.title.empty()) return std::nullopt;
  const std::string_view rest = std::string_view(address).substr(colon + 1);
  if (rest.starts_with("//")) return lastingWebAddress(scheme, rest.substr(2));
  return scheme + ":" + std::string(rest);
}

std::optional<std::string> trackKey(const TrackIdentity& track) {
  if (const auto address = lastingAddress(track)) {
    return "track " + platform::repairedUTF8(*address);
  }
  if (track.title.empty()) return std::nullopt;
  return "track\n" + keyText(track.artist) + '\n' + keyText(track.album) + '\n' +
         keyText(track.title) + '\n' + std::to_string(wholeSeconds(track.length));
}

std::optional<std::string> albumKey(const TrackIdentity& track) {
  if (track.album.empty()) return std::nullopt;
  const std::string& artist = track.albumArtist.empty() ? track.artist : track.albumArtist;
  return "album\n" + keyText(artist) + '\n' + keyText(track.album);
}

}  // namespace desktop
