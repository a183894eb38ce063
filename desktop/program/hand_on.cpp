#include "desktop/program/hand_on.h"

#include <QtDBus/QDBusMessage>
#include <cstdlib>
#include <iostream>

namespace desktop {

namespace {

const auto playerKey = QStringLiteral("player");
const auto demoKey = QStringLiteral("demo");
const auto onTopKey = QStringLiteral("on-top");
const auto tokenKey = QStringLiteral("activation-token");

constexpr int patience = 2000;  // milliseconds

}  // namespace

QVariantMap valuesOf(const CardRequest& request) {
  QVariantMap values;
  if (request.player) values[playerKey] = QString::fromStdString(*request.player);
  if (request.demo) values[demoKey] = true;
  if (request.onTop) values[onTopKey] = true;
  if (!request.activationToken.empty()) {
    values[tokenKey] = QString::fromStdString(request.activationToken);
  }
  return values;
}

CardRequest requestOf(const QVariantMap& values) {
  CardRequest request{.demo = values.value(demoKey).toBool(),
                      .onTop = values.value(onTopKey).toBool(),
                      .activationToken = values.value(tokenKey).toString().toStdString()};
  const auto player = values.find(playerKey);
  if (player != values.end()) request.player = player->toString().toStdString();
  return request;
}

HandingOn handOn(const QDBusConnection& bus, const CardRequest& request) {
  QDBusMessage call = QDBusMessage::createMethodCall(cardService, cardObject, cardInterface,
                                                     QStringLiteral("Show"));
  call.setAutoStartService(false);
  call << valuesOf(request);
  const QDBusMessage reply = bus.call(call, QDBus::Block, patience);
  if (reply.type() == QDBusMessage::ReplyMessage) return HandingOn::done;
  const QString error = reply.errorName();
  // What owns the name without a window knows of no card.
  const bool isNobodyThere = error == QLatin1String("org.freedesktop.DBus.Error.ServiceUnknown") ||
                             error == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner") ||
                             error == QLatin1String("org.freedesktop.DBus.Error.UnknownInterface");
  return isNobodyThere ? HandingOn::nobodyThere : HandingOn::unanswered;
}

std::optional<int> handOn(const QDBusConnection& bus, const CommandLine& commandLine) {
  const char* token = std::getenv("XDG_ACTIVATION_TOKEN");
  switch (handOn(bus, CardRequest{.player = commandLine.player,
                                  .demo = commandLine.demo,
                                  .onTop = commandLine.onTop,
                                  .activationToken = token != nullptr ? token : ""})) {
    case HandingOn::done:
      return EXIT_SUCCESS;
    case HandingOn::nobodyThere:
      return std::nullopt;
    case HandingOn::unanswered:
      break;
  }
  std::cerr << "virelune-widget: the card that runs does not answer; --new starts another\n";
  return EXIT_FAILURE;
}

}  // namespace desktop
