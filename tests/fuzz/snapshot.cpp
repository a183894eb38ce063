#include "desktop/player/snapshot.h"

#include <array>
#include <cmath>

#include "tests/fuzz/input.h"
#include "tests/fuzz/variants.h"

using fuzz::require;

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  constexpr std::array keys{
      "PlaybackStatus",   "Metadata",         "Volume",         "UserRating",
      "mpris:trackid",    "mpris:length",     "mpris:artUrl",   "xesam:title",
      "xesam:artist",     "xesam:album",      "xesam:url",      "xesam:albumArtist",
      "xesam:userRating", "xesam:autoRating", "vlc:nowplaying", "icy-title"};
  FuzzedDataProvider provider(bytes, length);
  QVariantMap properties = fuzz::map(provider, keys, 2);
  properties.insert(QStringLiteral("Metadata"), fuzz::map(provider, keys, 2));
  const auto snapshot = desktop::snapshotFromProperties(properties);
  for (const std::string* text :
       {&snapshot.title, &snapshot.artist, &snapshot.album, &snapshot.albumArtist}) {
    require(text->size() <= desktop::longestText);
    require(QString::fromStdString(*text).toStdString() == *text);
  }
  require(snapshot.trackId.isEmpty() || snapshot.trackId.startsWith('/'));
  require(std::isfinite(snapshot.length) && snapshot.length >= 0);
  for (const auto& rating : {snapshot.ownRating, snapshot.userRating, snapshot.autoRating}) {
    require(!rating || (*rating >= 0 && *rating <= 1));
  }
  require(snapshot == desktop::snapshotFromProperties(properties));
  return 0;
}
