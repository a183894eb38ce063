#include "desktop/player/mirror.h"

#include <QtCore/QVariantMap>
#include <QtCore/QXmlStreamReader>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusPendingReply>
#include <QtDBus/QDBusVariant>
#include <algorithm>
#include <limits>
#include <string_view>
#include <utility>
#include <vector>

namespace desktop {

namespace {

using std::chrono::milliseconds;

/// How long the interface stands still for one answer.
constexpr int patience = 250;
/// A player that takes longer than this for an answer is not waited for any more.
constexpr int promptAnswer = 100;
constexpr int noTimeout = std::numeric_limits<int>::max();

constexpr milliseconds shortestProbeDelay{1000};
constexpr milliseconds longestProbeDelay{30'000};

/// Some players forget a signal now and then; what they told is not trusted for longer.
constexpr milliseconds longestSnapshotAge{5000};

/// True when nobody answered; an error is an answer too.
bool isSilence(const QDBusMessage& reply) {
  if (reply.type() != QDBusMessage::ErrorMessage) return false;
  const QDBusError::ErrorType type = QDBusError(reply).type();
  return type == QDBusError::NoReply || type == QDBusError::Timeout ||
         type == QDBusError::TimedOut || type == QDBusError::Disconnected;
}

/// The writable properties of the player interface in introspection data
/// (D-Bus, "Introspection Data Format").
QStringList writableProperties(const QString& introspection) {
  QStringList names;
  QString interface;
  QXmlStreamReader reader(introspection);
  while (!reader.atEnd()) {
    if (reader.readNext() != QXmlStreamReader::StartElement) continue;
    const auto attributes = reader.attributes();
    if (reader.name() == QLatin1String("interface")) {
      interface = attributes.value(QLatin1String("name")).toString();
    } else if (reader.name() == QLatin1String("property") &&
               interface == QLatin1String(playerInterface) &&
               attributes.value(QLatin1String("access")) == QLatin1String("readwrite")) {
      names << attributes.value(QLatin1String("name")).toString();
    }
  }
  return names;
}

}  // namespace

PlayerMirror::PlayerMirror(const QDBusConnection& bus, QString name, QString owner)
    : bus_(bus), name_(std::move(name)), owner_(std::move(owner)), probeDelay_(shortestProbeDelay) {
  nextProbe_.setSingleShot(true);
  connect(&nextProbe_, &QTimer::timeout, this, &PlayerMirror::probe);
}

QString PlayerMirror::shortName() const {
  return name_.mid(static_cast<qsizetype>(std::string_view(playerNamePrefix).size()));
}

// Messages.

QDBusMessage PlayerMirror::methodCall(const char* interface, const char* member) const {
  QDBusMessage message = QDBusMessage::createMethodCall(
      owner_, QLatin1String(playerPath), QLatin1String(interface), QLatin1String(member));
  message.setAutoStartService(false);
  return message;
}

QDBusMessage PlayerMirror::propertiesCall(const char* member, const char* interface) const {
  QDBusMessage message = methodCall(propertiesInterface, member);
  message << QString::fromLatin1(interface);
  return message;
}

// Questions that are waited for.

std::optional<QVariant> PlayerMirror::ask(const QDBusMessage& message) {
  QElapsedTimer timer;
  timer.start();
  const QDBusMessage reply = bus_.call(message, QDBus::Block, patience);
  if (isSilence(reply)) giveUp();
  if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
    return std::nullopt;
  }
  if (timer.elapsed() > promptAnswer) {
    isPrompt_ = false;
    nextProbe_.start(probeDelay_);
  }
  return reply.arguments().constFirst();
}

void PlayerMirror::giveUp() {
  isPrompt_ = false;
  snapshot_.reset();
  probe();
  emit changed();
}

std::shared_ptr<const PlayerSnapshot> PlayerMirror::snapshot() {
  if (isPrompt_ && snapshot_ && snapshotAge_.hasExpired(longestSnapshotAge.count())) forget();
  if (isPrompt_ && !snapshot_) {
    const auto answer = ask(propertiesCall("GetAll", playerInterface));
    if (answer) {
      adopt(*answer);
    } else if (isPrompt_) {
      giveUp();
    }
  }
  return snapshot_;
}

double PlayerMirror::position() {
  if (snapshot() == nullptr) return 0;
  if (!isPrompt_ || positionIsFresh_) return position_;
  QDBusMessage message = propertiesCall("Get", playerInterface);
  message << QStringLiteral("Position");
  const auto answer = ask(message);
  if (!answer) return 0;
  position_ = secondsFromMicroseconds(*answer);
  holdPosition();
  return position_;
}

void PlayerMirror::adopt(const QVariant& properties) {
  const QVariantMap values = mapFromVariant(properties);
  snapshot_ =
      std::make_shared<const PlayerSnapshot>(withoutGrowingLength(snapshotFromProperties(values)));
  snapshotAge_.start();
  state_ = snapshot_->state;
  position_ = secondsFromMicroseconds(values.value(QStringLiteral("Position")));
  holdPosition();
}

/// Some players give what has arrived so far of a live stream for its length. A remote track whose
/// length grows and grows has none; a single correction is an estimate that became better.
PlayerSnapshot PlayerMirror::withoutGrowingLength(PlayerSnapshot told) {
  if (!told.isSameTrack(lastTold_) || told.length < lastTold_.length) {
    growths_ = 0;
  } else if (lastTold_.length > 0 && told.length > lastTold_.length) {
    ++growths_;
  }
  lastTold_ = told;
  if (lengthIsGrowing()) told.length = 0;
  return told;
}

bool PlayerMirror::lengthIsGrowing() const { return growths_ >= 2 && lastTold_.isRemote(); }

/// Holds the position for what is left of this turn of the event loop.
void PlayerMirror::holdPosition() {
  if (positionIsFresh_) return;
  positionIsFresh_ = true;
  QMetaObject::invokeMethod(
      this, [this] { positionIsFresh_ = false; }, Qt::QueuedConnection);
}

/// What was told does not hold any more. A player that is not waited for keeps its last answer
/// until the next one is there.
void PlayerMirror::forget() {
  if (!isPrompt_) return probe();
  snapshot_.reset();
  positionIsFresh_ = false;
}

// Questions that are not waited for.

void PlayerMirror::askTogether(std::span<PlayerMirror* const> players) {
  std::vector<QDBusPendingCall> descriptions;
  std::vector<QDBusPendingCall> answers;
  for (const PlayerMirror* player : players) {
    descriptions.push_back(
        player->bus_.asyncCall(player->propertiesCall("GetAll", rootInterface), patience));
    answers.push_back(
        player->bus_.asyncCall(player->propertiesCall("GetAll", playerInterface), patience));
  }
  for (std::size_t i = 0; i < players.size(); ++i) {
    descriptions[i].waitForFinished();
    players[i]->described(descriptions[i].reply());
    answers[i].waitForFinished();
    if (answers[i].isError()) {
      players[i]->probe();
    } else {
      players[i]->probeAge_.start();
      players[i]->probeAnswered(answers[i].reply());
    }
  }
}

void PlayerMirror::probe() {
  // The bus keeps the order of what one player sends: an answer that comes after a signal is at
  // least as new as the signal.
  if (isProbing_) return;
  isProbing_ = true;
  nextProbe_.stop();
  probeAge_.start();
  if (identity_.isEmpty()) {
    bus_.callWithCallback(propertiesCall("GetAll", rootInterface), this,
                          SLOT(described(QDBusMessage)), noTimeout);
  }
  bus_.callWithCallback(propertiesCall("GetAll", playerInterface), this,
                        SLOT(probeAnswered(QDBusMessage)),
                        SLOT(probeFailed(QDBusError, QDBusMessage)), noTimeout);
}

void PlayerMirror::probeAnswered(const QDBusMessage& reply) {
  isProbing_ = false;
  isPrompt_ = probeAge_.elapsed() <= promptAnswer;
  probeDelay_ = shortestProbeDelay;
  adopt(reply.arguments().value(0));
  if (!isPrompt_) nextProbe_.start(probeDelay_);
  emit changed();
}

void PlayerMirror::probeFailed(const QDBusError&, const QDBusMessage&) {
  isProbing_ = false;
  isPrompt_ = false;
  nextProbe_.start(probeDelay_);
  probeDelay_ = std::min(probeDelay_ * 2, longestProbeDelay);
  if (std::exchange(snapshot_, nullptr)) emit changed();
}

void PlayerMirror::described(const QDBusMessage& reply) {
  if (reply.type() != QDBusMessage::ReplyMessage) return;
  const QVariantMap properties = mapFromVariant(reply.arguments().value(0));
  identity_ = textFromVariant(properties.value(QStringLiteral("Identity")));
  desktopEntry_ = textFromVariant(properties.value(QStringLiteral("DesktopEntry")));
  emit changed();
}

bool PlayerMirror::hasWritableRating(const PlayerSnapshot& now) {
  if (now.ratingProperty.isEmpty()) return false;
  if (!askedForWritableProperties_) {
    askedForWritableProperties_ = true;
    bus_.callWithCallback(methodCall("org.freedesktop.DBus.Introspectable", "Introspect"), this,
                          SLOT(introspected(QDBusMessage)), noTimeout);
  }
  return writableProperties_.contains(now.ratingProperty);
}

void PlayerMirror::introspected(const QDBusMessage& reply) {
  writableProperties_ = writableProperties(textFromVariant(reply.arguments().value(0)));
  emit changed();
}

// Commands.

bool PlayerMirror::tell(const QDBusMessage& message) {
  if (!isAnswering() || !bus_.send(message)) return false;
  forget();
  return true;
}

bool PlayerMirror::command(const char* member) { return tell(methodCall(playerInterface, member)); }

bool PlayerMirror::raise() { return bus_.send(methodCall(rootInterface, "Raise")); }

bool PlayerMirror::setPosition(double seconds) {
  const auto now = snapshot();
  if (now == nullptr) return false;
  const double target = now->length > 0 ? std::min(seconds, now->length) : seconds;
  if (now->trackId.isEmpty()) {
    // Without the track's id only a distance can be asked for.
    QDBusMessage seek = methodCall(playerInterface, "Seek");
    seek << microsecondsFromSeconds(target) - microsecondsFromSeconds(position());
    return tell(seek);
  }
  QDBusMessage message = methodCall(playerInterface, "SetPosition");
  message << QVariant::fromValue(QDBusObjectPath(now->trackId)) << microsecondsFromSeconds(target);
  return tell(message);
}

bool PlayerMirror::setOwnRating(const PlayerSnapshot& now, double rating) {
  if (!hasWritableRating(now)) return false;
  QDBusMessage message = propertiesCall("Set", playerInterface);
  message << now.ratingProperty << QVariant::fromValue(QDBusVariant(rating));
  return tell(message);
}

// What the bus delivered.

void PlayerMirror::receivedPropertiesChanged(const QDBusMessage& message) {
  const QVariantMap values = mapFromVariant(message.arguments().value(1));
  const auto status = values.constFind(QStringLiteral("PlaybackStatus"));
  if (status != values.constEnd()) state_ = stateFromStatus(*status);
  if (lengthIsGrowing() && snapshot_ && values.size() == 1 &&
      values.contains(QStringLiteral("Metadata"))) {
    // Word that a live stream has grown is no news, and comes every few seconds.
    PlayerSnapshot told = snapshotFromProperties(values);
    told.state = snapshot_->state;
    told.ratingProperty = snapshot_->ratingProperty;
    told.ownRating = snapshot_->ownRating;
    if (withoutGrowingLength(told) == *snapshot_) return;
  }
  forget();
  emit changed();
}

void PlayerMirror::receivedSeeked() {
  forget();
  emit changed();
}

}  // namespace desktop
