// The card's icon in the status area, which does everything through the card's public interface.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusServiceWatcher>
#include <QtWidgets/QMenu>
#include <QtWidgets/QSystemTrayIcon>
#include <functional>

namespace tray {

/// A click shows or hides the card, a middle click plays or pauses, the wheel changes the volume
/// where the desktop passes it on. Appears when there is a status area, and ends the program when
/// the card has gone.
class TrayIcon final : public QObject {
  Q_OBJECT

 public:
  /// The file is for icon themes without the program's own icon.
  TrayIcon(const QDBusConnection& bus, const QString& iconFile);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private slots:  // called by the bus
  void update();

 private:
  void appear();
  void act(const QString& action, const QString& argument = {}) const;
  void ask(const char* member, std::function<void(const QDBusMessage&)> answered);
  void showStatus(const QVariantMap& status);
  void showActions(const QList<QVariantMap>& actions);

  QDBusConnection bus_;
  QDBusServiceWatcher watcher_;
  QMenu menu_;  // outlives the icon that shows it
  QSystemTrayIcon icon_;
};

}  // namespace tray
