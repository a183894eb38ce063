// The players on the bus, and the one among them that the widget follows.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusServiceWatcher>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "desktop/player/mirror.h"

namespace desktop {

/// True for a bus name, its part after "org.mpris.MediaPlayer2.", that part's first component and
/// the identity of a player; ignoring case.
bool answersTo(const PlayerMirror& player, const QString& name);

/// Follows the names on the bus and what their owners signal.
class PlayerRegistry final : public QObject {
  Q_OBJECT

 public:
  /// Players as they are now, or as they come, change and go.
  enum class Watch { once, always };
  /// A player that answers to the name is chosen while there is one; empty: whichever plays.
  PlayerRegistry(const QDBusConnection& bus, QString wantedName, Watch watch);
  void setWantedName(const QString& name);

  /// The chosen player: the wanted one, else the one that plays, else the one last heard from; null
  /// without any.
  PlayerMirror* chosen() const { return chosen_; }
  /// All players, in the order of their names.
  std::vector<const PlayerMirror*> players() const;

 signals:
  void chosenChanged();        ///< another player, or something new with the chosen one
  void chosenDetailChanged();  ///< see PlayerMirror

 private slots:  // called by the bus
  void ownerChanged(const QString& name, const QString& oldOwner, const QString& newOwner);
  void propertiesChanged(const QDBusMessage& message);
  void seeked(const QDBusMessage& message);

 private:
  struct Player {
    std::unique_ptr<PlayerMirror> mirror;
    std::uint64_t lastHeard = 0;  ///< a count of signals, 0 before the first
  };

  void listen();
  void findPlayers(Watch watch);
  /// Whose signals are this player's; none when it has gone.
  std::optional<QString> ownerOf(const QString& name) const;
  PlayerMirror* add(const QString& name, const QString& owner);
  template <class Tell>
  void heard(const QDBusMessage& message, Tell tell);
  void choose();

  const QDBusConnection bus_;
  QString wantedName_;
  QDBusServiceWatcher watcher_;
  std::vector<Player> players_;  // in the order of their names
  PlayerMirror* chosen_ = nullptr;
  std::uint64_t signalCount_ = 0;
};

}  // namespace desktop
