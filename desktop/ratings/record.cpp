#include "desktop/ratings/record.h"

#include <QtCore/QByteArray>
#include <QtCore/QCryptographicHash>

#include "platform/foundation/text.h"

namespace desktop {

std::optional<std::string> digestOf(const RatingsRecord& record) {
  const auto key = record.kind == RatingsRecord::Kind::track ? trackKey(record.identity)
                                                             : albumKey(record.identity);
  if (!key) return std::nullopt;
  // Among a million keys two have the same sixteen bytes once in 10^26.
  const QByteArrayView bytes(key->data(), static_cast<qsizetype>(key->size()));
  return QCryptographicHash::hash(bytes, QCryptographicHash::Blake2b_160).first(16).toStdString();
}

TrackIdentity storedIdentity(RatingsRecord::Kind kind, const TrackIdentity& told) {
  using platform::repairedUTF8;
  if (kind == RatingsRecord::Kind::album) {
    return {.album = repairedUTF8(told.album),
            .albumArtist = repairedUTF8(told.albumArtist.empty() ? told.artist : told.albumArtist)};
  }
  return {.address = repairedUTF8(lastingAddress(told).value_or("")),
          .artist = repairedUTF8(told.artist),
          .album = repairedUTF8(told.album),
          .albumArtist = repairedUTF8(told.albumArtist),
          .title = repairedUTF8(told.title),
          .length = static_cast<double>(wholeSeconds(told.length))};
}

}  // namespace desktop
