// What makes a track or an album the same one again, whichever player plays it and whenever.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace desktop {

/// What a player tells about a track. Empty texts and a length that is not above 0 are unknown.
struct TrackIdentity {
  std::string address = {};  ///< xesam:url, or an absolute path
  std::string artist = {};   ///< several joined into one text
  std::string album = {};
  std::string albumArtist = {};  ///< several joined into one text
  std::string title = {};
  double length = 0;  ///< seconds
  bool operator==(const TrackIdentity&) const = default;
};

/// A track's length in whole seconds; 0 when unknown.
std::int64_t wholeSeconds(double length);

/// The address under which a track is known for good, in one spelling: without user, password
/// and fragment, files percent-encoded as file:///path. None when the address is missing or
/// names the track for a while only:
/// - schemes that end with the program or name a drive and not the disc in it (blob:, data:,
///   cdda: …), addresses without a scheme that are no absolute path;
/// - files in temporary folders (/tmp, /var/tmp, /dev, /proc, the user's run-time folder except
///   for network mounts);
/// - web addresses with a session, a signature or an expiry in them, or with a port of the
///   ephemeral range on this machine;
/// - live streams (a web address without a length) that tell the title: the address is the
///   station's, and the track on it changes.
std::optional<std::string> lastingAddress(const TrackIdentity& track);

/// The path of a file address, as players write it: file:/path, file:///path with localhost or no
/// host, percent-encoded or not. Empty for another machine's.
std::string pathOfFileAddress(std::string_view address);

/// True when the artists, albums and titles are the same without regard to case and canonical
/// composition, and the lengths, which are known, within a second.
bool areNamesakes(const TrackIdentity& a, const TrackIdentity& b);

/// The text under which a track's marks are kept: its lasting address, else its artist, album,
/// title and length in whole seconds, the names without regard to case and canonical composition.
/// None when there is neither a lasting address nor a title.
std::optional<std::string> trackKey(const TrackIdentity& track);

/// The text under which the marks of a track's album are kept: album artist (else artist) and
/// album, compared as above. None without an album.
std::optional<std::string> albumKey(const TrackIdentity& track);

}  // namespace desktop
