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

  bool hasTrack = false;  ///< there is more than an empty place in a list
  QString trackId;        ///< a D-Bus object path; empty when missing or not one
  QString address;        ///< xesam:url
  QString artworkAddress;
  std::string title;  ///< without one, the name of the file
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

/// Three short helpers for values in whatever wrapping a player sends them.
QString textFromVariant(const QVariant& value);                  ///< lists are joined with ", "
std::optional<double> numberFromVariant(const QVariant& value);  ///< finite numbers only
QVariantMap mapFromVariant(const QVariant& value);               ///< empty for anything but a{sv}

}  // namespace desktop
