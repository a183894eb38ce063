#include "demo/demo_player.h"

#include <algorithm>
#include <cmath>

#include "platform/foundation/text.h"
#include "platform/platform.h"

namespace demo {

using platform::FourCharCode;
using platform::NSRunningApplication;
using platform::RunLoop;
namespace player = platform::player;

namespace {

// Going back within this many seconds from the start leaves the track.
constexpr double restartAfter = 3;

double now() {
  const RunLoop* runLoop = platform::current().runLoop;
  return runLoop != nullptr ? runLoop->now() : 0;
}

void tellLater(void (*tell)()) {
  if (RunLoop* runLoop = platform::current().runLoop) runLoop->dispatchAsync(tell);
}

}  // namespace

DemoPlayer::DemoPlayer(std::vector<Track> tracks) : tracks_(std::move(tracks)) {
  if (!tracks_.empty()) current_ = 0;
}

DemoPlayer::~DemoPlayer() {
  if (endTimer_) endTimer_->invalidate();
}

void DemoPlayer::launch(FourCharCode state) {
  if (running_) return;
  running_ = true;
  state_ = state;
  setPosition(0);
  tellLater([] {
    if (auto* workspace = platform::current().workspace) {
      workspace->postDidLaunch(player::bundleIdentifier);
    }
  });
  announce();
}

void DemoPlayer::quit() {
  if (!running_) return;
  running_ = false;
  state_ = stateStopped;
  setPosition(0);
  tellLater([] {
    if (auto* workspace = platform::current().workspace) {
      workspace->postDidTerminate(player::bundleIdentifier);
    }
  });
}

platform::ObjectArray DemoPlayer::runningApplications(const std::string& bundleIdentifier) const {
  platform::ObjectArray instances;
  if (!platform::caseInsensitiveEqual(bundleIdentifier, player::bundleIdentifier)) return instances;
  if (running_) {
    instances.push_back(platform::make<NSRunningApplication>(player::bundleIdentifier, false));
  }
  return instances;
}

void DemoPlayer::play() {
  if (current_) changeState(statePlaying);
}

void DemoPlayer::pause() {
  if (state_ != stateStopped) changeState(statePaused);
}

void DemoPlayer::stop() { changeState(stateStopped); }

bool DemoPlayer::playPause() {
  state_ == statePlaying ? pause() : play();
  return current_.has_value();
}

void DemoPlayer::changeState(FourCharCode state) {
  if (!running_ || state == state_) return;
  setState(state);
  announce();
}

bool DemoPlayer::nextTrack() {
  if (state_ == stateStopped || !current_) return false;
  moveTo((*current_ + 1) % tracks_.size());
  return true;
}

bool DemoPlayer::previousTrack() {
  if (state_ == stateStopped || !current_) return false;
  const std::size_t before = (*current_ + tracks_.size() - 1) % tracks_.size();
  moveTo(position() > restartAfter ? *current_ : before);
  return true;
}

void DemoPlayer::playTrack(std::size_t index) {
  if (!running_ || index >= tracks_.size()) return;
  state_ = statePlaying;
  moveTo(index);
}

void DemoPlayer::moveTo(std::size_t index) {
  setCurrentTrackIndex(index);
  announce();
}

bool DemoPlayer::seek(double seconds) {
  const Track* track = currentTrack();
  if (state_ == stateStopped || track == nullptr || !std::isfinite(seconds)) return false;
  const double end = track->duration > 0 ? track->duration : seconds;
  setPosition(std::max(0.0, std::min(seconds, end)));
  announce();
  return true;
}

void DemoPlayer::announce() const {
  if (!running_) return;
  tellLater([] {
    platform::current().distributedCenter->postNotification(
        platform::NSNotification(player::infoNotification));
  });
}

void DemoPlayer::setCurrentTrackIndex(std::optional<std::size_t> index) {
  current_ = index && *index < tracks_.size() ? index : std::nullopt;
  setPosition(0);
}

void DemoPlayer::setState(FourCharCode state) {
  const double reached = position();
  state_ = state;
  setPosition(state == stateStopped ? 0 : reached);
}

double DemoPlayer::position() {
  if (state_ != statePlaying || !current_) return heldPosition_;
  const double reached = heldPosition_ + (now() - heldSince_);
  const double duration = tracks_[*current_].duration;
  return duration > 0 ? std::min(reached, std::max(duration, heldPosition_)) : reached;
}

void DemoPlayer::setPosition(double seconds) {
  heldPosition_ = seconds;
  heldSince_ = now();
  if (endTimer_) endTimer_->invalidate();
  endTimer_ = nullptr;

  RunLoop* runLoop = platform::current().runLoop;
  if (state_ != statePlaying || !current_ || runLoop == nullptr) return;
  const double duration = tracks_[*current_].duration;
  if (duration <= 0 || seconds > duration) return;
  endTimer_ = platform::NSTimer::timerWithBlock(duration - seconds,
                                                [this](platform::NSTimer*) { nextTrack(); });
  runLoop->addTimer(endTimer_);
}

Marks& DemoPlayer::albumMarks(const Track& track) {
  if (track.album.empty()) return albumMarks_["track\n" + track.name + "\n" + track.artist];
  const std::string& artist = track.albumArtist.empty() ? track.artist : track.albumArtist;
  return albumMarks_["album\n" + track.album + "\n" + artist];
}

// Scripting

std::optional<platform::ScriptingReply> DemoPlayer::send(
    const platform::ScriptingRequest& request) {
  return running_ ? platform::interpret(request, *this) : std::nullopt;
}

std::optional<platform::PlayerTrack> DemoPlayer::track() {
  const Track* track = currentTrack();
  return track != nullptr ? std::optional<platform::PlayerTrack>(*track) : std::nullopt;
}

platform::Data DemoPlayer::artwork() {
  const Track* track = currentTrack();
  return track != nullptr ? track->cover : platform::Data();
}

Marks* DemoPlayer::marks(Marked of) {
  Track* track = currentTrack();
  if (track == nullptr) return nullptr;
  return of == Marked::track ? &track->marks : &albumMarks(*track);
}

DemoPlayer::Rating DemoPlayer::rating(Marked of) {
  const Marks* known = marks(of);
  return known != nullptr ? Rating{known->rating, known->ratingKind} : Rating{};
}

bool DemoPlayer::setRating(Marked of, std::int64_t rating) {
  Marks* known = marks(of);
  if (known == nullptr) return false;
  known->rating = rating;
  known->ratingKind = ratedByUser;
  announce();
  return true;
}

bool DemoPlayer::isLoved(Marked of) {
  const Marks* known = marks(of);
  return known != nullptr && known->loved;
}

bool DemoPlayer::setLoved(Marked of, bool loved) {
  Marks* known = marks(of);
  if (known == nullptr) return false;
  known->loved = loved;
  announce();
  return true;
}

}  // namespace demo
