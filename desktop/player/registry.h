// The players on the bus, and the one among them that the widget follows.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusServiceWatcher>
#include <cstdint>
#include <memory>
#include <vector>

#include "desktop/player/mirror.h"

namespace desktop {

/// Follows the names on the bus and what their owners signal.
class PlayerRegistry final : public QObject {
  Q_OBJECT

 public:
  /// With a name only the players that answer to it count: a bus name, its part after
  /// "org.mpris.MediaPlayer2.", that part's first component, or an identity; ignoring case.
  PlayerRegistry(const QDBusConnection& bus, QString wantedName);

  /// The chosen player: the one that plays, else the one last heard from; null without any.
  PlayerMirror* chosen() { return chosen_; }
  /// All players, in the order of their names.
  std::vector<const PlayerMirror*> players() const;

 signals:
  void chosenChanged();  ///< another player, or something new with the chosen one

 private slots:  // called by the bus
  void ownerChanged(const QString& name, const QString& oldOwner, const QString& newOwner);
  void propertiesChanged(const QDBusMessage& message);
  void seeked(const QDBusMessage& message);

 private:
  struct Player {
    std::unique_ptr<PlayerMirror> mirror;
    std::uint64_t lastHeard = 0;  ///< a count of signals, 0 before the first
  };

  void findPlayers();
  PlayerMirror* add(const QString& name, const QString& owner);
  bool isWanted(const PlayerMirror& player) const;
  template <class Tell>
  void heard(const QDBusMessage& message, Tell tell);
  void choose();

  const QDBusConnection bus_;
  const QString wantedName_;
  QDBusServiceWatcher watcher_;
  std::vector<Player> players_;  // in the order of their names
  PlayerMirror* chosen_ = nullptr;
  std::uint64_t signalCount_ = 0;
};

}  // namespace desktop
