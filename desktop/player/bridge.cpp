#include "desktop/player/bridge.h"

#include <algorithm>
#include <chrono>
#include <utility>

#include "desktop/player/changes.h"
#include "platform/application/player_dictionary.h"
#include "platform/application/workspace.h"
#include "platform/loop/notification.h"
#include "platform/platform.h"

namespace desktop {

namespace {

using std::chrono::milliseconds;

/// A player may signal as often as it likes; the widget refreshes no more often than this.
constexpr milliseconds announcementInterval{50};

/// "mpv" for "mpv.instance42".
QString firstComponent(const QString& name) { return name.section(QLatin1Char('.'), 0, 0); }

/// How MPRIS calls a command, and its property that says whether it can be given now.
struct MprisCommand {
  const char* member;
  const char* condition = "";
};

MprisCommand mprisCommand(PlayerCommand command) {
  switch (command) {
    case PlayerCommand::playPause:
      return {"PlayPause", "CanControl"};
    case PlayerCommand::play:
      return {"Play", "CanPlay"};
    case PlayerCommand::pause:
      return {"Pause", "CanPause"};
    case PlayerCommand::stop:
      return {"Stop", "CanControl"};
    case PlayerCommand::next:
      return {"Next", "CanGoNext"};
    case PlayerCommand::previous:
      return {"Previous", "CanGoPrevious"};
    case PlayerCommand::raise:
      break;
  }
  return {"Raise"};
}

}  // namespace

std::vector<PlayerListing> PlayerBridge::listPlayers(const QDBusConnection& bus) {
  const PlayerRegistry registry(bus, QString(), PlayerRegistry::Watch::once);
  std::vector<PlayerListing> listing;
  for (const PlayerMirror* player : registry.players()) {
    listing.push_back({.name = player->shortName().toStdString(),
                       .identity = player->identity().toStdString(),
                       .desktopEntry = player->desktopEntry().toStdString(),
                       .status = statusFromState(player->state())});
  }
  return listing;
}

PlayerBridge::PlayerBridge(const QDBusConnection& bus, const Options& options)
    : bus_(bus),
      registry_(bus, QString::fromStdString(options.playerName), options.watch),
      covers_(options.coverReaders,
              [this] {
                hasNews_ = true;
                announcement_.start(milliseconds::zero());
              }),
      ratings_(options.ratings),
      lastDesktopEntry_(options.playerName.empty()
                            ? QString::fromStdString(options.lastPlayer)
                            : firstComponent(QString::fromStdString(options.playerName))),
      wasRunning_(registry_.chosen() != nullptr) {
  if (options.watch == PlayerRegistry::Watch::always) {
    marksSignal_.emplace(bus, [this] { scheduleAnnouncement(); });
  }
  if (ratings_ != nullptr) moved_.emplace(*ratings_, [this] { scheduleAnnouncement(); });
  if (ratings_ != nullptr && options.marksReader != nullptr) {
    readAhead_.emplace(*options.marksReader, ratings_->file(), [this] {
      if (hasNews_) announcement_.start(milliseconds::zero());
    });
  }
  setWritesLibraries(options.writesLibraries);
  announcement_.setSingleShot(true);
  announcement_.setTimerType(Qt::PreciseTimer);
  QObject::connect(&announcement_, &QTimer::timeout, &announcement_, [this] { announce(); });
  QObject::connect(&registry_, &PlayerRegistry::chosenChanged, &announcement_,
                   [this, heard = options.heard] {
                     rememberDesktopEntry();
                     scheduleAnnouncement();
                     if (heard) heard();
                   });
  QObject::connect(&registry_, &PlayerRegistry::chosenDetailChanged, &announcement_,
                   [this] { scheduleAnnouncement(false); });
  rememberDesktopEntry();
}

void PlayerBridge::follow(const std::string& playerName) {
  const QString name = QString::fromStdString(playerName);
  if (!name.isEmpty()) lastDesktopEntry_ = firstComponent(name);
  registry_.setWantedName(name);
  rememberDesktopEntry();
}

void PlayerBridge::setWritesLibraries(bool writes) {
  library_ =
      writes && ratings_ != nullptr ? std::make_unique<LibraryWriter>(bus_, *ratings_) : nullptr;
  if (library_ && registry_.chosen() != nullptr) library_->meet(*registry_.chosen());
}

bool PlayerBridge::follows(const std::string& playerName) const {
  const PlayerMirror* chosen = registry_.chosen();
  return chosen != nullptr && answersTo(*chosen, QString::fromStdString(playerName));
}

std::optional<platform::ScriptingReply> PlayerBridge::send(
    const platform::ScriptingRequest& request) {
  PlayerMirror* chosen = registry_.chosen();
  if (chosen == nullptr) return std::nullopt;
  FollowedPlayer player = followed(*chosen);
  return platform::interpret(request, player);
}

FollowedPlayer PlayerBridge::followed(PlayerMirror& chosen) {
  return {chosen, covers_, ratings_, moved_ ? &*moved_ : nullptr, library_.get()};
}

// Controls.

std::optional<PlayerReport> PlayerBridge::report() {
  PlayerMirror* player = registry_.chosen();
  if (player == nullptr) return std::nullopt;
  return followed(*player).report();
}

std::optional<PlayerGlance> PlayerBridge::glance() {
  PlayerMirror* player = registry_.chosen();
  if (player == nullptr) return std::nullopt;
  return followed(*player).glance();
}

double PlayerBridge::position() {
  PlayerMirror* player = registry_.chosen();
  return player != nullptr ? player->position() : 0;
}

bool PlayerBridge::can(PlayerCommand command) {
  PlayerMirror* player = registry_.chosen();
  if (player == nullptr) return false;
  const QString condition = QLatin1String(mprisCommand(command).condition);
  return condition.isEmpty() || player->can(condition);
}

bool PlayerBridge::command(PlayerCommand command) {
  PlayerMirror* player = registry_.chosen();
  if (player == nullptr) return false;
  if (command == PlayerCommand::raise) return player->raise();
  return player->command(mprisCommand(command).member);
}

bool PlayerBridge::seek(double seconds) {
  PlayerMirror* player = registry_.chosen();
  return player != nullptr && player->setPosition(std::max(seconds, 0.0));
}

bool PlayerBridge::setVolume(double volume) {
  PlayerMirror* player = registry_.chosen();
  return player != nullptr && player->setVolume(volume);
}

// The application.

void PlayerBridge::rememberDesktopEntry() {
  const PlayerMirror* player = registry_.chosen();
  if (player == nullptr) return;
  if (library_) library_->meet(*player);
  lastDesktopEntry_ = player->desktopEntry();
  // Players that do not tell their entry mostly go by the same name there.
  if (lastDesktopEntry_.isEmpty()) lastDesktopEntry_ = firstComponent(player->shortName());
}

bool PlayerBridge::raise() {
  PlayerMirror* player = registry_.chosen();
  if (player != nullptr) player->raise();
  return player != nullptr;
}

// Announcing.

void PlayerBridge::scheduleAnnouncement(bool isNews) {
  hasNews_ = hasNews_ || isNews;
  if (announcement_.isActive()) return;
  auto delay = milliseconds::zero();
  if (sinceAnnouncement_.isValid()) {
    delay = std::max(announcementInterval - milliseconds(sinceAnnouncement_.elapsed()), delay);
  }
  announcement_.start(delay);
}

bool PlayerBridge::hasReadAhead() {
  PlayerMirror* player = registry_.chosen();
  const auto now = readAhead_ && player != nullptr ? player->snapshot() : nullptr;
  if (now == nullptr || !now->hasTrack) return true;
  return readAhead_->hasRead(identityOf(*now), LibraryWriter::nameOf(*player));
}

void PlayerBridge::announce() {
  if (hasNews_ && !hasReadAhead()) return;
  sinceAnnouncement_.start();
  if (!std::exchange(hasNews_, false)) {
    return platform::current().distributedCenter->postNotification(
        platform::NSNotification(playerDetailNotification));
  }
  const bool isRunningNow = isRunning();
  const bool wasRunning = std::exchange(wasRunning_, isRunningNow);
  platform::NSWorkspace* workspace = platform::NSWorkspace::sharedWorkspace();
  if (isRunningNow == wasRunning || workspace == nullptr) {
    platform::current().distributedCenter->postNotification(
        platform::NSNotification(platform::player::infoNotification));
  } else if (isRunningNow) {
    workspace->postDidLaunch(platform::player::bundleIdentifier);
  } else {
    workspace->postDidTerminate(platform::player::bundleIdentifier);
  }
}

}  // namespace desktop
