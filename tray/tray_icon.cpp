#include "tray/tray_icon.h"

#include <QtCore/QCoreApplication>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusMetaType>
#include <algorithm>
#include <array>

#include "desktop/remote/names.h"

namespace tray {

namespace {

const auto statusArea = QStringLiteral("org.kde.StatusNotifierWatcher");
const auto itemPath = QStringLiteral("/StatusNotifierItem");
const auto menuPath = QStringLiteral("/MenuBar");
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

constexpr int volumeStep = 5;  // per cent

/// As status areas know icons.
QString serviceName() {
  return QStringLiteral("org.kde.StatusNotifierItem-%1-1").arg(QCoreApplication::applicationPid());
}

QVariantMap mapFrom(const QVariant& value) {
  return value.canConvert<QDBusArgument>() ? qdbus_cast<QVariantMap>(value) : value.toMap();
}

}  // namespace

TrayIcon::TrayIcon(const QDBusConnection& bus, const QString& iconFile)
    : bus_(bus),
      item_(&itemObject_, {.iconName = iconName,
                           .iconFile = iconFile,
                           .menuPath = menuPath,
                           .activated = [this] { act(QStringLiteral("show")); },
                           .middleClicked = [this] { act(QStringLiteral("play-pause")); },
                           .scrolled = [this](int steps) { changeVolume(steps); }}),
      menu_(&menuObject_, {.chosen =
                               [this](const QString& name) {
                                 act(name);
                                 // What is no news of the player is not told by itself.
                                 update();
                               },
                           .aboutToShow = [this] { update(); }}) {
  qDBusRegisterMetaType<QList<QVariantMap>>();
  bus_.registerObject(itemPath, &itemObject_, QDBusConnection::ExportAdaptors);
  bus_.registerObject(menuPath, &menuObject_, QDBusConnection::ExportAdaptors);
  bus_.registerService(serviceName());

  watcher_.setConnection(bus_);
  watcher_.addWatchedService(statusArea);
  watcher_.addWatchedService(desktop::cardService);
  connect(&watcher_, &QDBusServiceWatcher::serviceRegistered, this, [this](const QString& service) {
    if (service == statusArea) appear();
  });
  connect(&watcher_, &QDBusServiceWatcher::serviceUnregistered, this, [](const QString& service) {
    if (service == desktop::cardService) QCoreApplication::quit();
  });
  bus_.connect(desktop::cardService, desktop::cardObject,
               QStringLiteral("org.freedesktop.DBus.Properties"),
               QStringLiteral("PropertiesChanged"), this, SLOT(update()));
  if (bus_.interface()->isServiceRegistered(statusArea)) appear();
  update();
}

void TrayIcon::appear() {
  auto message =
      QDBusMessage::createMethodCall(statusArea, QStringLiteral("/StatusNotifierWatcher"),
                                     statusArea, QStringLiteral("RegisterStatusNotifierItem"));
  bus_.send(message << serviceName());
}

void TrayIcon::changeVolume(int steps) const {
  act(QStringLiteral("volume"), QString::asprintf("%+d", volumeStep * steps));
}

void TrayIcon::act(const QString& action, const QString& argument) const {
  auto message = QDBusMessage::createMethodCall(desktop::cardService, desktop::cardObject,
                                                desktop::publicInterface, QStringLiteral("Act"));
  message << action << argument;
  bus_.send(message);
}

void TrayIcon::ask(const char* member, std::optional<QDBusPendingCallWatcher>& question,
                   const std::function<void(const QDBusMessage&)>& answered) {
  question.emplace(bus_.asyncCall(QDBusMessage::createMethodCall(
      desktop::cardService, desktop::cardObject, desktop::publicInterface, QLatin1String(member))));
  connect(&*question, &QDBusPendingCallWatcher::finished, this, [&question, answered] {
    const QDBusMessage reply = question->reply();
    if (reply.type() == QDBusMessage::ReplyMessage) answered(reply);
  });
}

void TrayIcon::update() {
  ask("Status", statusQuestion_,
      [this](const QDBusMessage& reply) { showStatus(mapFrom(reply.arguments().value(0))); });
  ask("Actions", actionsQuestion_, [this](const QDBusMessage& reply) {
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
  item_.setToolTip(lines);
}

void TrayIcon::showActions(const QList<QVariantMap>& actions) {
  QList<MenuItem> items;
  for (const char* name : shownActions) {
    if (*name == '\0') {
      items.append(MenuItem{});
      continue;
    }
    const auto action = std::find_if(actions.begin(), actions.end(), [name](const auto& one) {
      return one.value(QStringLiteral("name")).toString() == QLatin1String(name);
    });
    if (action == actions.end()) continue;
    const QVariant on = action->value(QStringLiteral("on"));
    items.append({.name = QLatin1String(name),
                  .label = action->value(QStringLiteral("label")).toString(),
                  .isPossible = action->value(QStringLiteral("possible")).toBool(),
                  .isOn = on.isValid() ? std::optional(on.toBool()) : std::nullopt});
  }
  menu_.setItems(items);
}

}  // namespace tray
