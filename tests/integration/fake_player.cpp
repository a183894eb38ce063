#include "tests/integration/fake_player.h"

#include <QtCore/QMutexLocker>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusVariant>
#include <stdexcept>
#include <thread>
#include <utility>

namespace tests {

namespace {

const auto kPath = QStringLiteral("/org/mpris/MediaPlayer2");
const auto kPlayerInterface = QStringLiteral("org.mpris.MediaPlayer2.Player");
const auto kPropertiesInterface = QStringLiteral("org.freedesktop.DBus.Properties");

QString textOf(QVariant argument) {
  if (argument.canConvert<QDBusVariant>()) argument = argument.value<QDBusVariant>().variant();
  if (argument.canConvert<QDBusObjectPath>()) return argument.value<QDBusObjectPath>().path();
  return argument.toString();
}

}  // namespace

FakePlayer::FakePlayer(const PrivateBus& bus, const QString& name, const QVariantMap& properties)
    : name_(QStringLiteral("org.mpris.MediaPlayer2.") + name),
      connection_(QDBusConnection::connectToBus(bus.address(), bus.address() + name)),
      object_(properties) {
  object_.moveToThread(&thread_);
  thread_.start();
  const bool isReady =
      connection_.registerVirtualObject(kPath, &object_) && connection_.registerService(name_);
  if (!isReady) throw std::runtime_error("the fake player cannot get on the bus");
}

FakePlayer::~FakePlayer() {
  connection_.unregisterObject(kPath);
  QDBusConnection::disconnectFromBus(connection_.name());
  thread_.quit();
  thread_.wait();
}

void FakePlayer::signalChange(const QVariantMap& changed) {
  QDBusMessage signal =
      QDBusMessage::createSignal(kPath, kPropertiesInterface, QStringLiteral("PropertiesChanged"));
  signal << kPlayerInterface << changed << QStringList();
  connection_.send(signal);
}

// Introspection is answered like everything else.
QString FakePlayer::Object::introspect(const QString&) const { return {}; }

void FakePlayer::Object::setProperties(const QVariantMap& properties) {
  const QMutexLocker lock(&mutex_);
  properties_ = properties;
}

QStringList FakePlayer::Object::calls() const {
  const QMutexLocker lock(&mutex_);
  return calls_;
}

bool FakePlayer::Object::handleMessage(const QDBusMessage& message,
                                       const QDBusConnection& connection) {
  std::this_thread::sleep_for(answerTime_.load());
  ++answerCount_;
  return connection.send(answer(message));
}

QDBusMessage FakePlayer::Object::answer(const QDBusMessage& message) {
  const QMutexLocker lock(&mutex_);
  const QVariantList arguments = message.arguments();
  const bool isForPlayer = arguments.value(0).toString() == kPlayerInterface;
  if (message.interface() == kPropertiesInterface && message.member() == QLatin1String("GetAll")) {
    return message.createReply(isForPlayer ? properties_ : QVariantMap());
  }
  if (message.interface() == kPropertiesInterface && message.member() == QLatin1String("Get")) {
    const auto found = properties_.constFind(arguments.value(1).toString());
    if (found == properties_.constEnd()) {
      return message.createErrorReply(QDBusError::UnknownProperty, QStringLiteral("unknown"));
    }
    return message.createReply(QVariant::fromValue(QDBusVariant(*found)));
  }
  if (message.member() == QLatin1String("Introspect")) {
    return message.createReply(
        QStringLiteral("<node><interface name='org.mpris.MediaPlayer2.Player'>"
                       "<property name='Rating' type='d' access='readwrite'/></interface></node>"));
  }
  QStringList words = {message.member()};
  for (const QVariant& argument : arguments) words << textOf(argument);
  calls_ << words.join(QLatin1Char(' '));
  return message.createReply();
}

}  // namespace tests
