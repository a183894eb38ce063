#include "desktop/program/player_source.h"

#include <chrono>
#include <utility>

#include "desktop/player/marks_signal.h"
#include "platform/application/player_dictionary.h"
#include "platform/loop/notification.h"
#include "platform/platform.h"

namespace desktop {

namespace {

constexpr std::chrono::seconds busInterval{1};  // between looks for a bus that has gone

}  // namespace

PlayerSource::PlayerSource(Options options)
    : bus_(std::move(options.bus)),
      playerName_(std::move(options.playerName)),
      lastPlayer_(std::move(options.lastPlayer)),
      ratings_(options.ratings),
      writesLibraries_(options.writesLibraries),
      coverReaders_(options.coverReaders),
      marksReader_(options.marksReader) {
  busSeeker_.setInterval(busInterval);
  connect(&busSeeker_, &QTimer::timeout, this, [this] { seekBus(); });
  if (bus_) makeBridge();
  if (bus_ && !options.demo) {
    demoGivesWay_ = options.demoStandsIn && !isRunning() &&
                    !desktop_.applicationPath(platform::player::bundleIdentifier);
    if (!demoGivesWay_) return;
  }
  demoPlayer_ = std::make_unique<demo::DemoPlayer>();
  demoWorkspace_ = std::make_unique<demo::DemoWorkspace>(*demoPlayer_, &desktop_);
}

void PlayerSource::makeBridge() {
  if (ratings_ != nullptr) {
    ratings_->setChangeHandler([bus = *bus_] { MarksSignal::send(bus); });
  }
  bridge_ = std::make_unique<PlayerBridge>(
      *bus_, PlayerBridge::Options{.playerName = playerName_,
                                   .lastPlayer = lastPlayer_,
                                   .ratings = ratings_,
                                   .writesLibraries = writesLibraries_,
                                   .coverReaders = coverReaders_,
                                   .marksReader = marksReader_,
                                   .heard = [this] { heard(); }});
  bus_->connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"),
                QStringLiteral("org.freedesktop.DBus.Local"), QStringLiteral("Disconnected"), this,
                SLOT(busLost()));
}

// The demo player.

void PlayerSource::heard() {
  if (demoPlayer_ && demoGivesWay_ && bridge_ && bridge_->isPlaying()) leaveDemo();
  if (!demoPlayer_) emit playerHeard();
}

void PlayerSource::leaveDemo() {
  demoWorkspace_.reset();
  demoPlayer_.reset();
  demoGivesWay_ = false;
  emit demoLeft();
  announce();
}

bool PlayerSource::hasPlayer(const std::string& name) { return bridge_ && bridge_->follows(name); }

void PlayerSource::followPlayer(const std::string& name) {
  playerName_ = name;
  if (bridge_) bridge_->follow(name);
  if (demoPlayer_ && bus_) leaveDemo();
}

std::vector<PlayerListing> PlayerSource::players() const {
  return bus_ ? PlayerBridge::listPlayers(*bus_) : std::vector<PlayerListing>();
}

void PlayerSource::setWritesLibraries(bool writes) {
  writesLibraries_ = writes;
  if (bridge_) bridge_->setWritesLibraries(writes);
}

void PlayerSource::playDemo() {
  demoGivesWay_ = false;
  if (demoPlayer_) return;
  demoPlayer_ = std::make_unique<demo::DemoPlayer>();
  demoWorkspace_ = std::make_unique<demo::DemoWorkspace>(*demoPlayer_, &desktop_);
  emit demoEntered();
  demoPlayer_->launch(demo::statePlaying);
  announce();
}

void PlayerSource::announce() {
  platform::current().distributedCenter->postNotification(
      platform::NSNotification(platform::player::infoNotification));
}

// The bus.

void PlayerSource::busLost() {
  if (bridge_) lastPlayer_ = bridge_->desktopEntry();
  // What called is the bridge's own connection.
  QMetaObject::invokeMethod(
      this,
      [this] {
        bridge_.reset();
        busSeeker_.start();
        if (!demoPlayer_) announce();
      },
      Qt::QueuedConnection);
}

void PlayerSource::seekBus() {
  const QString name = QStringLiteral("virelune-%1").arg(++busCount_);
  const auto found = QDBusConnection::connectToBus(QDBusConnection::SessionBus, name);
  if (!found.isConnected()) return QDBusConnection::disconnectFromBus(name);
  busSeeker_.stop();
  bus_ = found;
  makeBridge();
  emit busReturned(*bus_);
  if (!demoPlayer_) announce();
}

// Controls.

std::optional<PlayerReport> PlayerSource::report() {
  if (!demoPlayer_) return bridge_ ? bridge_->report() : std::nullopt;
  using Marked = platform::ScriptablePlayer::Marked;
  PlayerReport report{*glance()};
  report.position = demoPlayer_->position();
  report.rating = demoPlayer_->rating(Marked::track);
  report.albumRating = demoPlayer_->rating(Marked::album);
  report.isLoved = demoPlayer_->isLoved(Marked::track);
  report.isAlbumLoved = demoPlayer_->isLoved(Marked::album);
  return report;
}

std::optional<PlayerGlance> PlayerSource::glance() {
  if (!demoPlayer_) return bridge_ ? bridge_->glance() : std::nullopt;
  return PlayerGlance{
      .player = "demo", .state = demoPlayer_->state(), .track = demoPlayer_->track()};
}

double PlayerSource::position() {
  if (!demoPlayer_) return bridge_ ? bridge_->position() : 0;
  return demoPlayer_->position();
}

bool PlayerSource::can(PlayerCommand command) {
  if (!demoPlayer_) return bridge_ && bridge_->can(command);
  return command != PlayerCommand::raise;
}

bool PlayerSource::command(PlayerCommand command) {
  if (!demoPlayer_) return bridge_ && bridge_->command(command);
  const bool isPlaying = demoPlayer_->state() == demo::statePlaying;
  switch (command) {
    case PlayerCommand::playPause:
      return demoPlayer_->playPause();
    case PlayerCommand::play:
      return isPlaying || demoPlayer_->playPause();
    case PlayerCommand::pause:
      return !isPlaying || demoPlayer_->playPause();
    case PlayerCommand::stop:
      demoPlayer_->stop();
      return true;
    case PlayerCommand::next:
      return demoPlayer_->nextTrack();
    case PlayerCommand::previous:
      return demoPlayer_->previousTrack();
    case PlayerCommand::raise:
      break;
  }
  return false;
}

bool PlayerSource::seek(double seconds) {
  return demoPlayer_ ? demoPlayer_->seek(seconds) : bridge_ && bridge_->seek(seconds);
}

bool PlayerSource::setVolume(double volume) {
  return !demoPlayer_ && bridge_ && bridge_->setVolume(volume);
}

// Scripting and workspace.

platform::WorkspaceBackend& PlayerSource::workspace() {
  return demoWorkspace_ ? static_cast<platform::WorkspaceBackend&>(*demoWorkspace_) : desktop_;
}

std::optional<platform::ScriptingReply> PlayerSource::send(
    const platform::ScriptingRequest& request) {
  if (demoPlayer_) return demoPlayer_->send(request);
  return bridge_ ? bridge_->send(request) : std::nullopt;
}

platform::ObjectArray PlayerSource::runningApplications(const std::string& bundleIdentifier) {
  return workspace().runningApplications(bundleIdentifier);
}

std::optional<std::string> PlayerSource::applicationPath(const std::string& bundleIdentifier) {
  return workspace().applicationPath(bundleIdentifier);
}

std::shared_ptr<platform::NSImage> PlayerSource::icon(const std::string& path) {
  return workspace().icon(path);
}

void PlayerSource::launchApplication(const std::string& bundleIdentifier) {
  workspace().launchApplication(bundleIdentifier);
}

void PlayerSource::openURL(const platform::URL& url) { desktop_.openURL(url); }

}  // namespace desktop

#include "moc_player_source.cpp"
