#include "desktop/player/snapshot.h"

#include <QtCore/QSequentialIterable>
#include <QtCore/QStringList>
#include <QtCore/QUrl>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusVariant>
#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

#include "platform/foundation/text.h"

#include "platform/application/player_dictionary.h"

namespace desktop {

namespace {

namespace player = platform::player;

constexpr double microsecondsPerSecond = 1'000'000;

/// Variants inside variants, as some players send them; an absurd depth answers none.
QVariant unwrapped(QVariant value) {
  for (int depth = 0; depth < 8 && value.canConvert<QDBusVariant>(); ++depth) {
    value = value.value<QDBusVariant>().variant();
  }
  return value;
}

/// A text, or the texts of a list joined until there are more characters than wanted.
QString joinedText(const QVariant& value, qsizetype wanted) {
  const QVariant plain = unwrapped(value);
  if (plain.metaType() == QMetaType::fromType<QString>()) return plain.toString();
  if (plain.metaType() == QMetaType::fromType<QDBusObjectPath>()) {
    return plain.value<QDBusObjectPath>().path();
  }
  const bool isList = plain.metaType() == QMetaType::fromType<QStringList>() ||
                      plain.metaType() == QMetaType::fromType<QVariantList>();
  QString joined;
  if (!isList) return joined;
  for (const QVariant& part : plain.value<QSequentialIterable>()) {
    const QVariant text = unwrapped(part);
    if (text.metaType() != QMetaType::fromType<QString>() || text.toString().isEmpty()) continue;
    if (!joined.isEmpty()) joined += QLatin1String(", ");
    joined += text.toString();
    if (joined.size() > wanted) break;
  }
  return joined;
}

QString beginningOf(const QString& text) {
  // The last character that may matter can take two units.
  constexpr qsizetype enough = longestText + 2;
  const std::string bytes = text.left(enough).toStdString();
  const std::string_view beginning = platform::beginningOfText(bytes, longestText);
  return QString::fromUtf8(beginning.data(), static_cast<qsizetype>(beginning.size()));
}

/// (D-Bus, "Valid Object Paths")
bool isObjectPath(const QString& text) {
  if (text == QLatin1String("/")) return true;
  if (!text.startsWith('/') || text.endsWith('/') || text.contains(QLatin1String("//"))) {
    return false;
  }
  return std::all_of(text.begin(), text.end(), [](QChar character) {
    const char ascii = character.toLatin1();
    return ascii == '/' || ascii == '_' || (character.unicode() < 0x80 && std::isalnum(ascii) != 0);
  });
}

/// Object paths and texts alike: many players send the track's id as a text.
QString trackIdFromVariant(const QVariant& value) {
  const QString text = wholeTextFromVariant(value, longestText);
  constexpr auto noTrack = "/org/mpris/MediaPlayer2/TrackList/NoTrack";
  return isObjectPath(text) && text != QLatin1String(noTrack) ? text : QString();
}

QString artworkAddressFromVariant(const QVariant& value) {
  const QString address = wholeTextFromVariant(value, std::numeric_limits<qsizetype>::max());
  const bool holdsContent = address.startsWith(QLatin1String("data:"), Qt::CaseInsensitive);
  return holdsContent || address.size() <= longestAddress ? address : QString();
}

/// The last component of an address, decoded; the host when there is no path.
QString nameFromAddress(const QString& address) {
  const QUrl url(address);
  const QString name = url.fileName(QUrl::FullyDecoded);
  return name.isEmpty() ? url.host() : name;
}

std::optional<double> ratingFromVariant(const QVariant& value) {
  const auto rating = numberFromVariant(value);
  if (!rating || *rating < 0) return std::nullopt;
  return std::min(*rating, 1.0);
}

void readOwnRating(const QVariantMap& properties, PlayerSnapshot& snapshot) {
  for (const char* name : {"Rating", "UserRating", "userRating"}) {
    const auto found = properties.constFind(QLatin1String(name));
    if (found == properties.constEnd() || !numberFromVariant(*found)) continue;
    snapshot.ratingProperty = found.key();
    snapshot.ownRating = ratingFromVariant(*found);
    return;
  }
}

}  // namespace

QString textFromVariant(const QVariant& value) {
  return beginningOf(joinedText(value, longestText));
}

QString wholeTextFromVariant(const QVariant& value, qsizetype bound) {
  const QString text = joinedText(value, bound);
  return text.size() <= bound ? text : QString();
}

std::optional<double> numberFromVariant(const QVariant& value) {
  const QVariant plain = unwrapped(value);
  switch (plain.typeId()) {
    case QMetaType::Double:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::UChar: {
      const double number = plain.toDouble();
      return std::isfinite(number) ? std::optional(number) : std::nullopt;
    }
    default:
      return std::nullopt;
  }
}

QVariantMap mapFromVariant(const QVariant& value) {
  const QVariant plain = unwrapped(value);
  if (plain.metaType() == QMetaType::fromType<QVariantMap>()) return plain.toMap();
  if (plain.metaType() != QMetaType::fromType<QDBusArgument>()) return {};
  const auto argument = plain.value<QDBusArgument>();
  if (argument.currentSignature() != QLatin1String("a{sv}")) return {};
  return qdbus_cast<QVariantMap>(argument);
}

platform::FourCharCode stateFromStatus(const QVariant& status) {
  const QString text = textFromVariant(status);
  if (text == QLatin1String("Playing")) return player::statePlaying;
  if (text == QLatin1String("Paused")) return player::statePaused;
  if (text == QLatin1String("Stopped")) return player::stateStopped;
  return {};
}

std::string statusFromState(platform::FourCharCode state) {
  if (state == player::statePlaying) return "Playing";
  if (state == player::statePaused) return "Paused";
  return state == player::stateStopped ? "Stopped" : "";
}

double secondsFromMicroseconds(const QVariant& value) {
  return std::max(numberFromVariant(value).value_or(0), 0.0) / microsecondsPerSecond;
}

qint64 microsecondsFromSeconds(double seconds) {
  constexpr double century = 100.0 * 366 * 24 * 3600;
  if (!(seconds > 0)) return 0;
  return static_cast<qint64>(std::llround(std::min(seconds, century) * microsecondsPerSecond));
}

bool PlayerSnapshot::isStream() const { return length <= 0 && isRemote(); }

bool PlayerSnapshot::isRemote() const {
  const QUrl url(address);
  return !url.host().isEmpty() && url.scheme() != QLatin1String("file");
}

PlayerSnapshot snapshotFromProperties(const QVariantMap& properties) {
  PlayerSnapshot snapshot;
  snapshot.state = stateFromStatus(properties.value(QStringLiteral("PlaybackStatus")));
  readOwnRating(properties, snapshot);

  const QVariantMap metadata = mapFromVariant(properties.value(QStringLiteral("Metadata")));
  const auto text = [&metadata](const char* key) {
    return textFromVariant(metadata.value(QLatin1String(key)));
  };
  snapshot.trackId = trackIdFromVariant(metadata.value(QStringLiteral("mpris:trackid")));
  snapshot.address =
      wholeTextFromVariant(metadata.value(QStringLiteral("xesam:url")), longestAddress);
  snapshot.artworkAddress =
      artworkAddressFromVariant(metadata.value(QStringLiteral("mpris:artUrl")));
  const QString name = beginningOf(nameFromAddress(snapshot.address));
  QString title = text("xesam:title");
  if (title.isEmpty() || title == name || title == snapshot.address) {
    // What a station sends of what is on air, where players keep it.
    for (const char* key : {"vlc:nowplaying", "icy-title"}) {
      if (const QString onAir = text(key); !onAir.isEmpty()) title = onAir;
    }
  }
  if (title.isEmpty()) title = name;
  snapshot.title = title.toStdString();
  snapshot.artist = text("xesam:artist").toStdString();
  snapshot.album = text("xesam:album").toStdString();
  snapshot.albumArtist = text("xesam:albumArtist").toStdString();
  snapshot.length = secondsFromMicroseconds(metadata.value(QStringLiteral("mpris:length")));
  snapshot.userRating = ratingFromVariant(metadata.value(QStringLiteral("xesam:userRating")));
  snapshot.autoRating = ratingFromVariant(metadata.value(QStringLiteral("xesam:autoRating")));
  snapshot.hasTrack = !title.isEmpty() || !snapshot.address.isEmpty() || snapshot.length > 0;
  return snapshot;
}

}  // namespace desktop
