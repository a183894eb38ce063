// The demo player as tests need it: watched, set up without a word to anyone, and misbehaving.
#pragma once

#include "demo/demo_player.h"

namespace tests {

class SimulatedPlayer final : public demo::DemoPlayer {
 public:
  using DemoPlayer::albumMarks;
  using DemoPlayer::announce;
  using DemoPlayer::currentTrack;
  using DemoPlayer::setCurrentTrackIndex;
  using DemoPlayer::setPosition;
  using DemoPlayer::setState;

  std::optional<platform::ScriptingReply> send(const platform::ScriptingRequest& request) override;

  /// The requests since the last clearLog(), each after a blank but the first: "pnam" for getting
  /// the current track's name, "cArt[0].pRaw", "count cArt", "resolve pTrk", "set pPos 12.5",
  /// "command hook/Next", "command pTrk hook/Revl".
  const std::string& asked() const { return log_; }
  std::size_t requestCount() const { return requestCount_; }
  void clearLog() {
    log_.clear();
    requestCount_ = 0;
  }

  /// Runs, but answers nothing and does nothing.
  void setSilent(bool silent) { silent_ = silent; }
  /// Answers nothing to writes and leaves everything as it is.
  void setRefusesWrites(bool refuses) { refusesWrites_ = refuses; }
  /// Answers every question whose path ends in the code with this reply; none: no answer.
  void setReply(platform::FourCharCode code, std::optional<platform::ScriptingReply> reply) {
    replies_[code] = std::move(reply);
  }
  /// Called with each request before it is answered; may change or quit the player.
  void setRequestHook(std::function<void(const platform::ScriptingRequest&)> hook) {
    requestHook_ = std::move(hook);
  }

 private:
  std::string log_;
  std::size_t requestCount_ = 0;
  bool silent_ = false;
  bool refusesWrites_ = false;
  std::map<platform::FourCharCode, std::optional<platform::ScriptingReply>> replies_;
  std::function<void(const platform::ScriptingRequest&)> requestHook_;
};

}  // namespace tests
