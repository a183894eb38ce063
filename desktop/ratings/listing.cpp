#include "desktop/ratings/listing.h"

#include <ostream>
#include <string>

#include "desktop/ratings/entries.h"
#include "desktop/ratings/exchange.h"

namespace desktop {

namespace {

constexpr int star = 20;
constexpr int halfStar = 10;

std::string starsOf(int rating) {
  std::string stars;
  for (int i = 0; i < 5; ++i) {
    const int rest = rating - i * star;
    stars += rest >= star ? "★" : rest >= halfStar ? "½" : "·";
  }
  return stars;
}

std::string names(const RatingsRecord& entry) {
  const TrackIdentity& of = entry.identity;
  const bool isAlbum = entry.kind == RatingsRecord::Kind::album;
  const std::string& artist = isAlbum ? of.albumArtist : of.artist;
  const std::string& title = isAlbum ? of.album : of.title;
  if (title.empty()) return of.address;
  return artist.empty() ? title : artist + " – " + title;
}

void write(const RatingsRecord& entry, Listing::Format format, std::ostream& out) {
  const bool isAlbum = entry.kind == RatingsRecord::Kind::album;
  switch (format) {
    case Listing::Format::json:
      out << lineFromRecord(entry) << '\n';
      return;
    case Listing::Format::m3u: {
      if (isAlbum || entry.identity.address.empty()) return;
      const std::string path = pathOfFileAddress(entry.identity.address);
      // A name with a line's end in it cannot be told in this format.
      const std::string& place = path.empty() ? entry.identity.address : path;
      if (place.find_first_of("\r\n") != std::string::npos) return;
      std::string title = names(entry);
      for (char& character : title) {
        if (character == '\n' || character == '\r') character = ' ';
      }
      const auto length = wholeSeconds(entry.identity.length);
      out << "#EXTINF:" << (length > 0 ? length : -1) << ',' << title << '\n' << place << '\n';
      return;
    }
    case Listing::Format::text:
      out << starsOf(entry.marks.rating.value_or(0))
          << (entry.marks.loved == true ? " ♥  " : "    ") << names(entry)
          << (isAlbum ? "  (album)" : "") << '\n';
  }
}

}  // namespace

Result<> listRatings(RatingsStore& store, const Listing& wanted, std::ostream& out) {
  EntryCollection copy;
  if (const auto problem = store.copyTo(copy)) return Problem{problem->text};
  if (wanted.format == Listing::Format::m3u) out << "#EXTM3U\n";
  const int result = copy.entries.forEach([&](const StoredEntry& stored) {
    const RatingsRecord& entry = stored.record;
    const bool isWanted = stored.hasNames && (!wanted.lovedOnly || entry.marks.loved == true) &&
                          entry.marks.rating.value_or(0) >= wanted.minimum &&
                          (entry.marks.rating || entry.marks.loved == true);
    if (isWanted) write(entry, wanted.format, out);
    return out.good();
  });
  out.flush();
  if (result != SQLITE_OK || !out.good()) return Problem{"the list cannot be written"};
  return {};
}

}  // namespace desktop
