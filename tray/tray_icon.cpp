#include "tray/tray_icon.h"

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusMetaType>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtGui/QIcon>
#include <QtGui/QWheelEvent>
#include <QtWidgets/QApplication>
#include <array>

#include "desktop/remote/names.h"

namespace tray {

namespace {

const auto statusArea = QStringLiteral("org.kde.StatusNotifierWatcher");
const auto iconName = QStringLiteral("org.virelune.Virelune.Widget-symbolic");

// Those of the card's actions that need no argument, by groups as in its own menu.
constexpr std::array<const char*, 17> shownActions{"show",
                                                   "",
                                                   "play-pause",
                                                   "previous",
                                                   "next",
                                                   "raise",
                                                   "love",
                                                   "love-album",
                                                   "mute",
                                                   "",
                                                   "write-library",
                                                   "hide-when-idle",
                                                   "launch-at-login",
                                                   "on-top",
                                                   "status-icon",
                                                   "",
                                                   "quit"};

QVariantMap mapFrom(const QVariant& value) {
  return value.canConvert<QDBusArgument>() ? qdbus_cast<QVariantMap>(value) : value.toMap();
}

}  // namespace

TrayIcon::TrayIcon(const QDBusConnection& bus, const QString& iconFile) : bus_(bus) {
  qDBusRegisterMetaType<QList<QVariantMap>>();
  icon_.setIcon(QIcon::fromTheme(iconName, QIcon(iconFile)));
  icon_.setContextMenu(&menu_);
  icon_.installEventFilter(this);
  connect(&icon_, &QSystemTrayIcon::activated, this, [this](QSystemTrayIcon::ActivationReason by) {
    if (by == QSystemTrayIcon::Trigger) act(QStringLiteral("show"));
    if (by == QSystemTrayIcon::MiddleClick) act(QStringLiteral("play-pause"));
  });

  watcher_.setConnection(bus_);
  watcher_.addWatchedService(statusArea);
  watcher_.addWatchedService(desktop::cardService);
  connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, this, [this](const QString& service) {
    if (service == statusArea) appear();
  });
  connect(&watcher_, &QDBusServiceWatcher::serviceUnregistered, this, [](const QString& service) {
    if (service == desktop::cardService) QApplication::quit();
  });
  bus_.connect(desktop::cardService, desktop::cardObject,
               QStringLiteral("org.freedesktop.DBus.Properties"),
               QStringLiteral("PropertiesChanged"), this, SLOT(update()));
  if (bus_.interface()->isServiceRegistered(statusArea)) appear();
  update();
}

void TrayIcon::appear() {
  icon_.hide();
  icon_.show();
}

bool TrayIcon::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::Wheel) {
    const int turned = static_cast<const QWheelEvent*>(event)->angleDelta().y();
    act(QStringLiteral("volume"), turned > 0 ? QStringLiteral("+5") : QStringLiteral("-5"));
  }
  return QObject::eventFilter(watched, event);
}

void TrayIcon::act(const QString& action, const QString& argument) const {
  auto message = QDBusMessage::createMethodCall(desktop::cardService, desktop::cardObject,
                                                desktop::publicInterface, QStringLiteral("Act"));
  message << action << argument;
  bus_.send(message);
}

void TrayIcon::ask(const char* member, std::function<void(const QDBusMessage&)> answered) {
  const auto question = QDBusMessage::createMethodCall(
      desktop::cardService, desktop::cardObject, desktop::publicInterface, QLatin1String(member));
  auto* watcher =
      new QDBusPendingCallWatcher(bus_.asyncCall(question), this);  // NOLINT: deletes itself
  connect(watcher, &QDBusPendingCallWatcher::finished, this,
          [watcher, answered = std::move(answered)] {
            const QDBusMessage reply = watcher->reply();
            if (reply.type() == QDBusMessage::ReplyMessage) answered(reply);
            watcher->deleteLater();
          });
}

void TrayIcon::update() {
  ask("Status",
      [this](const QDBusMessage& reply) { showStatus(mapFrom(reply.arguments().value(0))); });
  ask("Actions", [this](const QDBusMessage& reply) {
    showActions(qdbus_cast<QList<QVariantMap>>(reply.arguments().value(0)));
  });
}

void TrayIcon::showStatus(const QVariantMap& status) {
  QStringList lines;
  for (const char* key : {"title", "artist", "album"}) {
    const QString line = status.value(QLatin1String(key)).toString();
    if (!line.isEmpty()) lines.append(line);
  }
  if (lines.isEmpty()) lines.append(status.value(QStringLiteral("identity")).toString());
  icon_.setToolTip(lines.join(QLatin1Char('\n')));
}

void TrayIcon::showActions(const QList<QVariantMap>& actions) {
  menu_.clear();
  for (const char* name : shownActions) {
    if (*name == '\0') {
      menu_.addSeparator();
      continue;
    }
    for (const QVariantMap& action : actions) {
      if (action.value(QStringLiteral("name")).toString() != QLatin1String(name)) continue;
      QAction* item = menu_.addAction(action.value(QStringLiteral("label")).toString());
      item->setEnabled(action.value(QStringLiteral("possible")).toBool());
      item->setCheckable(action.contains(QStringLiteral("on")));
      item->setChecked(action.value(QStringLiteral("on")).toBool());
      connect(item, &QAction::triggered, this, [this, name] {
        act(QLatin1String(name));
        // What is no news of the player is not told by itself.
        update();
      });
    }
  }
}

}  // namespace tray
