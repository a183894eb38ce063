#include "desktop/player/registry.h"

#include <QtCore/QStringList>
#include <QtDBus/QDBusReply>
#include <algorithm>
#include <tuple>
#include <utility>

namespace desktop {

namespace {

/// Stands for whichever player was active last, so it would count that one twice.
constexpr auto proxyName = "playerctld";

QDBusMessage busCall(const char* member) {
  return QDBusMessage::createMethodCall(
      QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
      QStringLiteral("org.freedesktop.DBus"), QLatin1String(member));
}

bool isEqual(const QString& a, const QString& b) { return a.compare(b, Qt::CaseInsensitive) == 0; }

}  // namespace

bool answersTo(const PlayerMirror& player, const QString& name) {
  const QString shortName = player.shortName();
  return !name.isEmpty() && (isEqual(name, shortName) || isEqual(name, player.name()) ||
                             isEqual(name, shortName.section(QLatin1Char('.'), 0, 0)) ||
                             isEqual(name, player.identity()));
}

PlayerRegistry::PlayerRegistry(const QDBusConnection& bus, QString wantedName, Watch watch)
    : bus_(bus), wantedName_(std::move(wantedName)) {
  if (watch == Watch::always) listen();
  findPlayers(watch);
  choose();
}

void PlayerRegistry::listen() {
  watcher_.setWatchMode(QDBusServiceWatcher::WatchForOwnerChange);
  watcher_.setConnection(bus_);
  watcher_.addWatchedService(QLatin1String(playerNamePrefix).chopped(1) + QLatin1Char('*'));
  connect(&watcher_, &QDBusServiceWatcher::serviceOwnerChanged, this,
          &PlayerRegistry::ownerChanged);
  QDBusConnection connection = bus_;
  connection.connect(QString(), QLatin1String(playerPath), QLatin1String(propertiesInterface),
                     QStringLiteral("PropertiesChanged"), this,
                     SLOT(propertiesChanged(QDBusMessage)));
  connection.connect(QString(), QLatin1String(playerPath), QLatin1String(playerInterface),
                     QStringLiteral("Seeked"), this, SLOT(seeked(QDBusMessage)));
}

void PlayerRegistry::findPlayers(Watch watch) {
  const QDBusReply<QStringList> names = bus_.call(busCall("ListNames"));
  std::vector<PlayerMirror*> found;
  for (const QString& name : names.value()) {
    if (!name.startsWith(QLatin1String(playerNamePrefix))) continue;
    // Who does not listen asks by the name, and is spared a question for each player.
    const auto owner = watch == Watch::once ? name : ownerOf(name);
    if (!owner) continue;
    if (PlayerMirror* player = add(name, *owner)) found.push_back(player);
  }
  PlayerMirror::askTogether(found);
}

std::optional<QString> PlayerRegistry::ownerOf(const QString& name) const {
  QDBusMessage question = busCall("GetNameOwner");
  question << name;
  const QDBusReply<QString> owner = bus_.call(question);
  return owner.isValid() ? std::optional(owner.value()) : std::nullopt;
}

PlayerMirror* PlayerRegistry::add(const QString& name, const QString& owner) {
  const auto place = std::lower_bound(
      players_.begin(), players_.end(), name,
      [](const Player& player, const QString& text) { return player.mirror->name() < text; });
  const bool isKnown = place != players_.end() && place->mirror->name() == name;
  if (isKnown) return nullptr;
  auto mirror = std::make_unique<PlayerMirror>(bus_, name, owner);
  PlayerMirror* added = mirror.get();
  connect(added, &PlayerMirror::changed, this, [this, added] {
    const PlayerMirror* before = chosen_;
    choose();
    if (chosen_ == before && chosen_ == added) emit chosenChanged();
  });
  connect(added, &PlayerMirror::detailChanged, this, [this, added] {
    if (chosen_ == added) emit chosenDetailChanged();
  });
  players_.insert(place, Player{std::move(mirror)});
  return added;
}

std::vector<const PlayerMirror*> PlayerRegistry::players() const {
  std::vector<const PlayerMirror*> all;
  for (const Player& player : players_) all.push_back(player.mirror.get());
  return all;
}

void PlayerRegistry::setWantedName(const QString& name) {
  wantedName_ = name;
  choose();
}

void PlayerRegistry::choose() {
  const auto rank = [this](const Player& player) {
    const PlayerMirror* mirror = player.mirror.get();
    // Of several that play the one that is followed already stays.
    return std::tuple(answersTo(*mirror, wantedName_), mirror->isPlaying(),
                      mirror->isPlaying() && mirror == chosen_, player.lastHeard,
                      mirror->isPaused(), mirror == chosen_);
  };
  const Player* best = nullptr;
  for (const Player& player : players_) {
    const bool isProxy = player.mirror->shortName() == QLatin1String(proxyName);
    if (isProxy && !answersTo(*player.mirror, wantedName_)) continue;
    if (best == nullptr || rank(player) > rank(*best)) best = &player;
  }
  PlayerMirror* chosen = best != nullptr ? best->mirror.get() : nullptr;
  if (std::exchange(chosen_, chosen) != chosen) emit chosenChanged();
}

void PlayerRegistry::ownerChanged(const QString& name, const QString&, const QString& newOwner) {
  const auto found = std::find_if(players_.begin(), players_.end(), [&](const Player& player) {
    return player.mirror->name() == name;
  });
  // Freed only after the choice, so that no other player takes its place in memory before.
  std::unique_ptr<PlayerMirror> gone;
  if (found != players_.end()) {
    if (found->mirror->owner() == newOwner) return;
    gone = std::move(found->mirror);
    players_.erase(found);
  }
  if (!newOwner.isEmpty()) {
    if (PlayerMirror* added = add(name, newOwner)) added->probe();
  }
  choose();
}

template <class Tell>
void PlayerRegistry::heard(const QDBusMessage& message, Tell tell) {
  ++signalCount_;
  for (Player& player : players_) {
    if (player.mirror->owner() != message.service()) continue;
    player.lastHeard = signalCount_;
    tell(*player.mirror);
  }
}

void PlayerRegistry::propertiesChanged(const QDBusMessage& message) {
  if (message.arguments().value(0).toString() != QLatin1String(playerInterface)) return;
  heard(message, [&](PlayerMirror& player) { player.receivedPropertiesChanged(message); });
}

void PlayerRegistry::seeked(const QDBusMessage& message) {
  heard(message, [](PlayerMirror& player) { player.receivedSeeked(); });
}

}  // namespace desktop

#include "moc_registry.cpp"
