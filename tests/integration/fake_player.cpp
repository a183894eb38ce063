#include "tests/integration/fake_player.h"

#include <QtCore/QMutexLocker>
#include <QtDBus/QDBusError>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusVariant>
#include <stdexcept>

namespace tests {

namespace {

const QString objectPath = "/org/mpris/MediaPlayer2";
const QString playerInterface = "org.mpris.MediaPlayer2.Player";
const QString propertiesInterface = "org.freedesktop.DBus.Properties";

QString textOf(QVariant argument) {
  if (argument.canConvert<QDBusVariant>()) argument = argument.value<QDBusVariant>().variant();
  if (argument.canConvert<QDBusObjectPath>()) return argument.value<QDBusObjectPath>().path();
  return argument.toString();
}

}  // namespace

FakePlayer::FakePlayer(const PrivateBus& bus, const QString& name, const QVariantMap& properties)
    : name_("org.mpris.MediaPlayer2." + name),
      connection_(QDBusConnection::connectToBus(bus.address(), bus.address() + name)),
      properties_(properties) {
  moveToThread(&thread_);
  thread_.start();
  if (!connection_.registerVirtualObject(objectPath, this) || !connection_.registerService(name_)) {
    throw std::runtime_error("the fake player cannot get on the bus");
  }
}

FakePlayer::~FakePlayer() {
  release();
  connection_.unregisterObject(objectPath);
  QDBusConnection::disconnectFromBus(connection_.name());
  thread_.quit();
  thread_.wait();
}

void FakePlayer::release() {
  isHeld_ = false;
  isHeld_.notify_all();
}

QDBusMessage FakePlayer::changeSignal(const QVariantMap& changed) {
  QDBusMessage signal =
      QDBusMessage::createSignal(objectPath, propertiesInterface, "PropertiesChanged");
  signal << playerInterface << changed << QStringList();
  return signal;
}

void FakePlayer::setProperties(const QVariantMap& properties) {
  const QMutexLocker lock(&mutex_);
  properties_ = properties;
}

QStringList FakePlayer::calls() const {
  const QMutexLocker lock(&mutex_);
  return calls_;
}

bool FakePlayer::handleMessage(const QDBusMessage& message, const QDBusConnection& connection) {
  isHeld_.wait(true);
  ++questionCount_;
  return connection.send(answer(message));
}

QDBusMessage FakePlayer::answer(const QDBusMessage& message) {
  const QMutexLocker lock(&mutex_);
  const QVariantList arguments = message.arguments();
  if (message.interface() == propertiesInterface && message.member() == "GetAll") {
    return message.createReply(arguments.value(0) == playerInterface ? properties_ : QVariantMap());
  }
  if (message.interface() == propertiesInterface && message.member() == "Get") {
    const QVariant value = properties_.value(arguments.value(1).toString());
    return value.isValid() ? message.createReply(QVariant::fromValue(QDBusVariant(value)))
                           : message.createErrorReply(QDBusError::UnknownProperty, "unknown");
  }
  if (message.member() == "Introspect") {
    return message.createReply(
        "<node><interface name='org.mpris.MediaPlayer2.Player'>"
        "<property name='Rating' type='d' access='readwrite'/></interface></node>");
  }
  if (message.member() == "Set") {
    properties_[arguments.value(1).toString()] = arguments.value(2).value<QDBusVariant>().variant();
  }
  QStringList words = {message.member()};
  for (const QVariant& argument : arguments) words << textOf(argument);
  calls_ << words.join(QLatin1Char(' '));
  return message.createReply();
}

}  // namespace tests
