#include "desktop/program/instance.h"

#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusMessage>

namespace desktop {

namespace {

const auto firstName = QStringLiteral("org.virelune.Virelune.Widget");
const auto objectPath = QStringLiteral("/org/virelune/Virelune/Widget");
const auto playerKey = QStringLiteral("player");
const auto demoKey = QStringLiteral("demo");
const auto onTopKey = QStringLiteral("on-top");
const auto tokenKey = QStringLiteral("activation-token");

constexpr int patience = 2000;  // milliseconds
constexpr int mostCards = 100;

QString nameOf(int number) {
  return number == 1 ? firstName : firstName + QStringLiteral(".Card%1").arg(number);
}

}  // namespace

HandingOn handOn(const QDBusConnection& bus, const CardRequest& request) {
  QVariantMap values;
  if (request.player) values[playerKey] = QString::fromStdString(*request.player);
  if (request.demo) values[demoKey] = true;
  if (request.onTop) values[onTopKey] = true;
  if (!request.activationToken.empty()) {
    values[tokenKey] = QString::fromStdString(request.activationToken);
  }
  QDBusMessage call =
      QDBusMessage::createMethodCall(firstName, objectPath, firstName, QStringLiteral("Show"));
  call.setAutoStartService(false);
  call << values;
  const QDBusMessage reply = bus.call(call, QDBus::Block, patience);
  if (reply.type() == QDBusMessage::ReplyMessage) return HandingOn::done;
  const QString error = reply.errorName();
  const bool isNobodyThere = error == QLatin1String("org.freedesktop.DBus.Error.ServiceUnknown") ||
                             error == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner");
  return isNobodyThere ? HandingOn::nobodyThere : HandingOn::unanswered;
}

void Instance::claim(const QDBusConnection& bus) {
  QDBusConnection connection = bus;
  number_ = 0;
  connection.registerObject(objectPath, this, QDBusConnection::ExportAllSlots);
  for (int number = 1; number <= mostCards && number_ == 0; ++number) {
    if (connection.registerService(nameOf(number))) number_ = number;
  }
}

void Instance::Show(const QVariantMap& request) {
  if (!handler_) return;
  CardRequest wanted{.demo = request.value(demoKey).toBool(),
                     .onTop = request.value(onTopKey).toBool(),
                     .activationToken = request.value(tokenKey).toString().toStdString()};
  const auto player = request.find(playerKey);
  if (player != request.end()) wanted.player = player->toString().toStdString();
  handler_(wanted);
}

}  // namespace desktop
