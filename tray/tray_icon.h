// The card's icon in the status area, which does everything through the card's public interface.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusServiceWatcher>
#include <functional>
#include <optional>

#include "tray/menu.h"
#include "tray/status_item.h"

namespace tray {

/// A click shows or hides the card, a middle click plays or pauses, the wheel changes the volume.
/// Appears when there is a status area, and ends the program when
/// the card has gone.
class TrayIcon final : public QObject {
  Q_OBJECT

 public:
  /// The file is for icon themes without the program's own icon.
  TrayIcon(const QDBusConnection& bus, const QString& iconFile);

 private slots:  // called by the bus
  void update();

 private:
  void appear();
  void act(const QString& action, const QString& argument = {}) const;
  /// Asks the card; what it answers to an earlier question does not matter any more.
  void ask(const char* member, std::optional<QDBusPendingCallWatcher>& question,
           const std::function<void(const QDBusMessage&)>& answered);
  void changeVolume(int steps) const;
  void showStatus(const QVariantMap& status);
  void showActions(const QList<QVariantMap>& actions);

  QDBusConnection bus_;
  QDBusServiceWatcher watcher_;
  QObject itemObject_;
  StatusItem item_;
  QObject menuObject_;
  Menu menu_;
  std::optional<QDBusPendingCallWatcher> statusQuestion_;
  std::optional<QDBusPendingCallWatcher> actionsQuestion_;
};

}  // namespace tray
