// What a player told at one moment, translated from MPRIS properties (the MPRIS D-Bus
// interface, version 2.2, and the MPRIS metadata guidelines for the "xesam:" and "mpris:" keys).
#pragma once

#include <QtCore/QString>
#include <QtCore/QVariantMap>
#include <optional>
#include <string>

#include "platform/application/scripting.h"

namespace desktop {

/// Every field has its zero value when the player does not tell it or tells it in a type that
/// makes no sense.
struct PlayerSnapshot {
  platform::FourCharCode state{};  ///< 0 unknown

  bool hasTrack = false;   ///< there is more than an empty place in a list
  QString trackId;         ///< a D-Bus object path; empty when missing or not one
  QString address;         ///< xesam:url
  QString artworkAddress;  ///< mpris:artUrl
  std::string title;       ///< without one, the name of the file
  std::string artist;
  std::string album;
  std::string albumArtist;
  double length = 0;  ///< seconds; 0 unknown

  QString ratingProperty;           ///< the player's own property for the rating; mostly none
  std::optional<double> ownRating;  ///< its value, 0 to 1; none when not rated
  std::optional<double> userRating;
  std::optional<double> autoRating;

  /// The address lies elsewhere and the track has no length: a stream.
  bool isStream() const;
  bool isRemote() const;  ///< the address lies elsewhere
  /// The same entry of the player's list.
  bool isSameTrack(const PlayerSnapshot& other) const {
    return trackId == other.trackId && address == other.address;
  }
  bool operator==(const PlayerSnapshot&) const = default;
};

/// The snapshot from the properties of "org.mpris.MediaPlayer2.Player".
PlayerSnapshot snapshotFromProperties(const QVariantMap& properties);

/// The state for "Playing", "Paused" or "Stopped"; 0 for anything else.
platform::FourCharCode stateFromStatus(const QVariant& status);

/// The other way round; empty for 0.
std::string statusFromState(platform::FourCharCode state);

/// The seconds behind a number of microseconds of any numeric type; never negative.
double secondsFromMicroseconds(const QVariant& value);
qint64 microsecondsFromSeconds(double seconds);

/// The most of one text of a player that is kept to be shown or compared, in bytes of UTF-8.
inline constexpr std::size_t longestText = 4096;
/// A longer address leads nowhere, unless it holds its content itself ("data:").
inline constexpr qsizetype longestAddress = 16'384;

// Short helpers for values in whatever wrapping a player sends them.
/// At most longestText of it, cut between characters as a reader sees them; lists are joined with
/// ", ".
QString textFromVariant(const QVariant& value);
/// All of it, or empty when there is more than a bound.
QString wholeTextFromVariant(const QVariant& value, qsizetype bound);
std::optional<double> numberFromVariant(const QVariant& value);  ///< finite numbers only
QVariantMap mapFromVariant(const QVariant& value);               ///< empty for anything but a{sv}

}  // namespace desktop
