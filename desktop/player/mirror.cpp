#include "desktop/player/mirror.h"

#include <malloc.h>

#include <QtCore/QXmlStreamReader>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusPendingCall>
#include <QtDBus/QDBusPendingReply>
#include <QtDBus/QDBusVariant>
#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

namespace desktop {

namespace {

/// How long the interface stands still for one answer, in milliseconds.
constexpr int patience = 250;
/// How long an answer that nobody waits for is still taken, in milliseconds.
constexpr int latestAnswer = 60'000;
/// A description that is not there after this time is asked for again, in milliseconds.
constexpr int latestDescription = 5000;

/// Some players forget a signal now and then; what they told is not trusted for longer.
constexpr qint64 longestSnapshotAge = 5000;  // milliseconds

/// Whether these are only what a player can do and how it plays, as no panel shows it.
bool areDetails(const QVariantMap& values) {
  static const QStringList details{"Volume",      "Rate",    "MinimumRate",
                                   "MaximumRate", "Shuffle", "LoopStatus"};
  return std::all_of(values.keyBegin(), values.keyEnd(), [](const QString& name) {
    return name.startsWith(QLatin1String("Can")) || details.contains(name);
  });
}

/// True when nobody answered; an error is an answer too.
bool isSilence(const QDBusError& error) {
  const QDBusError::ErrorType type = error.type();
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
    : bus_(bus), name_(std::move(name)), owner_(std::move(owner)) {
  clock_.start();
  due_.setSingleShot(true);
  connect(&due_, &QTimer::timeout, this, &PlayerMirror::doWhatIsDue);
  catchUp_.setSingleShot(true);
  connect(&catchUp_, &QTimer::timeout, this, &PlayerMirror::catchUp);
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
  attention_.asked(now());
  const QDBusMessage reply = bus_.call(message, QDBus::Block, patience);
  if (isSilence(QDBusError(reply))) {
    attention_.gaveUpWaiting();
    probe();
    return std::nullopt;
  }
  attention_.answered(now());
  planNext();
  if (reply.type() != QDBusMessage::ReplyMessage || reply.arguments().isEmpty()) {
    return std::nullopt;
  }
  return reply.arguments().constFirst();
}

std::shared_ptr<const PlayerSnapshot> PlayerMirror::snapshot() {
  // What has changed without a word is news to others than the one who asks.
  const auto before =
      !isStale_ && snapshotAge_.hasExpired(longestSnapshotAge) ? snapshot_ : nullptr;
  if (before) isStale_ = true;
  if (attention_.isPrompt() && isStale_) {
    const auto answer = ask(propertiesCall("GetAll", playerInterface));
    if (answer) {
      adopt(*answer);
      if (before && *before != *snapshot_) {
        QMetaObject::invokeMethod(this, &PlayerMirror::changed, Qt::QueuedConnection);
      }
    } else if (attention_.isPrompt()) {
      attention_.refused(now());
      dropWhatWasTold();
    }
  }
  if (!isRead_) readWhatWasTold();
  return snapshot_;
}

double PlayerMirror::position() {
  if (snapshot() == nullptr) return 0;
  if (attention_.isPrompt() && position_.isDoubtful(now())) {
    QDBusMessage message = propertiesCall("Get", playerInterface);
    message << QStringLiteral("Position");
    if (const auto answer = ask(message)) readPosition(*answer);
  }
  return position_.at(now());
}

void PlayerMirror::readPosition(const QVariant& told) {
  const double seconds = secondsFromMicroseconds(told);
  position_.told(seconds, now());
  comparePositionWithLength(seconds);
}

void PlayerMirror::adopt(const QVariant& properties) {
  told_ = mapFromVariant(properties);
  keepRatingUnderWay();
  readWhatWasTold();
  isStale_ = false;
  snapshotAge_.start();
  readPosition(told_.value(QStringLiteral("Position")));
}

void PlayerMirror::readWhatWasTold() {
  isRead_ = true;
  snapshot_ =
      std::make_shared<const PlayerSnapshot>(withoutGrowingLength(snapshotFromProperties(told_)));
  state_ = snapshot_->state;
  runPosition();
}

void PlayerMirror::dropWhatWasTold() {
  told_.clear();
  snapshot_.reset();
  isRead_ = true;
  state_ = {};
  position_.reset();
  planNext();
  emit changed();
}

/// Some players give what has arrived so far of a live stream for its length. A remote track whose
/// length grows and grows has none; a single correction is an estimate that became better.
PlayerSnapshot PlayerMirror::withoutGrowingLength(PlayerSnapshot told) {
  if (!told.isSameTrack(lastTold_)) hasPassedLength_ = false;
  if (!told.isSameTrack(lastTold_) || told.length < lastTold_.length) {
    growths_ = 0;
  } else if (lastTold_.length > 0 && told.length > lastTold_.length) {
    ++growths_;
  }
  lastTold_ = told;
  if (lengthIsGrowing() || hasPassedLength_) told.length = 0;
  return told;
}

/// Some players give a stream's first bytes for its length and never correct that.
void PlayerMirror::comparePositionWithLength(double position) {
  constexpr double inaccuracy = 2;  // seconds
  const bool isPassed = snapshot_ && snapshot_->isRemote() && snapshot_->length > 0 &&
                        position > snapshot_->length + inaccuracy;
  if (!isPassed) return;
  hasPassedLength_ = true;
  readWhatWasTold();
  QMetaObject::invokeMethod(this, &PlayerMirror::changed, Qt::QueuedConnection);
}

bool PlayerMirror::lengthIsGrowing() const { return growths_ >= 2 && lastTold_.isRemote(); }

/// Lets the position go on as the player does.
void PlayerMirror::runPosition() {
  const double rate = numberFromVariant(told_.value(QStringLiteral("Rate"))).value_or(1);
  position_.run(isPlaying() ? rate : 0, snapshot_ ? snapshot_->length : 0, now());
}

/// There may be something new to ask for.
void PlayerMirror::forget() {
  isStale_ = true;
  position_.unsettle();
  if (attention_.heard(now())) probe();
}

// Questions that are not waited for.

void PlayerMirror::askTogether(std::span<PlayerMirror* const> players) {
  std::vector<QDBusPendingCall> descriptions;
  std::vector<QDBusPendingCall> answers;
  for (PlayerMirror* player : players) {
    player->attention_.asked(player->now());
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
      players[i]->probeAnswered(answers[i].reply());
    }
  }
}

void PlayerMirror::probe() {
  attention_.asked(now());
  planNext();
  if (identity_.isEmpty()) describe();
  bus_.callWithCallback(propertiesCall("GetAll", playerInterface), this,
                        SLOT(probeAnswered(QDBusMessage)),
                        SLOT(probeFailed(QDBusError, QDBusMessage)), latestAnswer);
}

void PlayerMirror::planNext() {
  const auto due = attention_.dueTime();
  if (!due) return due_.stop();
  due_.start(std::max(*due - now(), PlayerAttention::Time::zero()));
}

void PlayerMirror::doWhatIsDue() {
  switch (attention_.due(now())) {
    case PlayerAttention::Due::nothing:
      return planNext();
    case PlayerAttention::Due::question:
      return probe();
    case PlayerAttention::Due::silence:
      return dropWhatWasTold();
  }
}

void PlayerMirror::probeAnswered(const QDBusMessage& reply) {
  attention_.answered(now());
  planNext();
  adopt(reply.arguments().value(0));
  emit changed();
}

void PlayerMirror::probeFailed(const QDBusError& error, const QDBusMessage&) {
  if (isSilence(error)) return;  // noticed when it was due
  attention_.refused(now());
  if (snapshot_) return dropWhatWasTold();
  planNext();
}

void PlayerMirror::describe() {
  if (std::exchange(isDescribing_, true)) return;
  bus_.callWithCallback(propertiesCall("GetAll", rootInterface), this,
                        SLOT(described(QDBusMessage)),
                        SLOT(descriptionFailed(QDBusError, QDBusMessage)), latestDescription);
}

void PlayerMirror::descriptionFailed(const QDBusError& error, const QDBusMessage&) {
  isDescribing_ = false;
  if (isSilence(error)) describe();
}

void PlayerMirror::described(const QDBusMessage& reply) {
  isDescribing_ = false;
  if (reply.type() != QDBusMessage::ReplyMessage) return;
  const QVariantMap properties = mapFromVariant(reply.arguments().value(0));
  identity_ = textFromVariant(properties.value(QStringLiteral("Identity")));
  desktopEntry_ = textFromVariant(properties.value(QStringLiteral("DesktopEntry")));
  emit changed();
}

bool PlayerMirror::can(const QString& property) {
  return snapshot() != nullptr && told_.value(property, true).toBool();
}

std::optional<double> PlayerMirror::volume() {
  return snapshot() != nullptr ? numberFromVariant(told_.value(QStringLiteral("Volume")))
                               : std::nullopt;
}

bool PlayerMirror::hasWritableRating(const PlayerSnapshot& now) {
  if (now.ratingProperty.isEmpty()) return false;
  if (!askedForWritableProperties_) {
    askedForWritableProperties_ = true;
    bus_.callWithCallback(methodCall("org.freedesktop.DBus.Introspectable", "Introspect"), this,
                          SLOT(introspected(QDBusMessage)),
                          SLOT(introspectionFailed(QDBusError, QDBusMessage)), latestDescription);
  }
  return writableProperties_.contains(now.ratingProperty);
}

void PlayerMirror::introspected(const QDBusMessage& reply) {
  constexpr qsizetype longest = 1'000'000;
  writableProperties_ =
      writableProperties(wholeTextFromVariant(reply.arguments().value(0), longest));
  emit changed();
}

void PlayerMirror::introspectionFailed(const QDBusError& error, const QDBusMessage&) {
  askedForWritableProperties_ = !isSilence(error);
}

// Commands.

bool PlayerMirror::tell(const QDBusMessage& message) {
  if (attention_.isSilent() || !bus_.send(message)) return false;
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

bool PlayerMirror::setVolume(double volume) {
  if (!this->volume()) return false;
  const double target = std::max(volume, 0.0);
  QDBusMessage message = propertiesCall("Set", playerInterface);
  message << QStringLiteral("Volume") << QVariant::fromValue(QDBusVariant(target));
  if (attention_.isSilent() || !bus_.send(message)) return false;
  // Steps that follow at once start from here.
  told_.insert(QStringLiteral("Volume"), target);
  return true;
}

bool PlayerMirror::setOwnRating(const PlayerSnapshot& now, double rating) {
  if (!hasWritableRating(now)) return false;
  QDBusMessage message = propertiesCall("Set", playerInterface);
  message << now.ratingProperty << QVariant::fromValue(QDBusVariant(rating));
  const bool isSent =
      !attention_.isSilent() && bus_.callWithCallback(message, this, SLOT(ratingAnswered()),
                                                      SLOT(ratingAnswered()), latestAnswer);
  if (!isSent) return false;
  ++ratingsUnderWay_;
  ratedTrack_ = now;
  ratedTrack_.ownRating = rating;
  keepRatingUnderWay();
  isRead_ = false;
  forget();
  return true;
}

void PlayerMirror::ratingAnswered() {
  --ratingsUnderWay_;
  forget();
}

/// What the player told before it took a rating comes before its answer to that.
void PlayerMirror::keepRatingUnderWay() {
  if (ratingsUnderWay_ == 0 || !snapshotFromProperties(told_).isSameTrack(ratedTrack_)) return;
  told_.insert(ratedTrack_.ratingProperty, *ratedTrack_.ownRating);
}

// What the bus delivered.

/// What a flood of signals tells is not read, or the queue would grow faster than it is worked off
/// and nothing else would come to its turn. The player is asked a little later.
bool PlayerMirror::isFlooding() {
  constexpr PlayerAttention::Time window{50};
  constexpr int mostSignals = 50;
  if (now() - lastWindow_ >= window) {
    lastWindow_ = now();
    signalCount_ = 0;
  }
  if (++signalCount_ <= mostSignals) return false;
  if (!catchUp_.isActive()) catchUp_.start(window);
  return true;
}

void PlayerMirror::catchUp() {
  receivedSomething();
#ifdef __GLIBC__
  ::malloc_trim(0);  // what was queued lies between what stays, and would be kept with it
#endif
}

void PlayerMirror::receivedPropertiesChanged(const QDBusMessage& message) {
  if (isFlooding()) return;
  const QVariantMap values = mapFromVariant(message.arguments().value(1));
  const bool isOnlyMetadata = values.size() == 1 && values.contains(QStringLiteral("Metadata"));
  const auto status = values.constFind(QStringLiteral("PlaybackStatus"));
  if (status != values.constEnd()) state_ = stateFromStatus(*status);
  runPosition();
  const QStringList untold = message.arguments().value(2).toStringList();
  if (snapshot_ && untold.isEmpty() && areDetails(values)) {
    told_.insert(values);
    runPosition();
    return emit detailChanged();
  }
  if (snapshot_) {
    // Holds while the player lets one wait for its answer.
    for (const QString& name : untold) {
      if (name != QLatin1String("PlaybackStatus")) told_.remove(name);
    }
    told_.insert(values);
    keepRatingUnderWay();
    isRead_ = false;
    if (lengthIsGrowing() && isOnlyMetadata) {
      // Word that a live stream has grown is no news, and comes every few seconds.
      const auto before = snapshot_;
      readWhatWasTold();
      if (*snapshot_ == *before) return;
    }
  }
  receivedSomething();
}

void PlayerMirror::receivedSeeked() {
  if (!isFlooding()) receivedSomething();
}

void PlayerMirror::receivedSomething() {
  forget();
  emit changed();
}

}  // namespace desktop

#include "moc_mirror.cpp"
