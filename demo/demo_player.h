// The built-in music player: it stands in when no other runs, and plays the part of one in tests.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "demo/demo_library.h"
#include "platform/application/player_interpreter.h"
#include "platform/application/scripting.h"
#include "platform/application/workspace.h"
#include "platform/loop/run_loop.h"

namespace demo {

using platform::player::statePaused;
using platform::player::statePlaying;
using platform::player::stateStopped;

/// A scriptable player with a small library, played in a circle. Everything happens on the main
/// thread and on the clock of the installed platform's run loop, which must outlive the player;
/// while a track with a length plays, one timer waits there for its end.
///
/// As with a player in a process of its own, signals come after the command has returned: they
/// are handed to the run loop and arrive in its next pass.
class DemoPlayer : public platform::ScriptingTransport, public platform::ScriptablePlayer {
 public:
  explicit DemoPlayer(std::vector<Track> tracks = library());
  ~DemoPlayer() override;
  DemoPlayer(const DemoPlayer&) = delete;
  DemoPlayer& operator=(const DemoPlayer&) = delete;

  /// Answers nothing while the player does not run.
  std::optional<platform::ScriptingReply> send(const platform::ScriptingRequest& request) override;

  // The process. A new player does not run.

  /// Starts the process at the start of its current track (at first the first one). Does nothing
  /// when it runs already.
  void launch(platform::FourCharCode state = stateStopped);
  /// Ends the process; the library, the marks and the current track stay as they are.
  void quit();
  /// The running instances with a bundle identifier (compared ignoring case).
  platform::ObjectArray runningApplications(const std::string& bundleIdentifier) const;

  // What a listener does in the player itself. Every change is announced; nothing happens while
  // the player does not run.

  void play();
  void pause();
  void stop();
  void playTrack(std::size_t index);

  // What scripting asks and does. Changes are announced too.

  platform::FourCharCode state() override { return state_; }
  double position() override;
  /// Moves within the current track; false when stopped or when the position is not a number.
  bool seek(double seconds) override;
  std::optional<platform::PlayerTrack> track() override;
  bool hasArtwork() override { return !artwork().isEmpty(); }
  platform::Data artwork() override;
  Rating rating(Marked of) override;
  bool setRating(Marked of, std::int64_t rating) override;
  bool isLoved(Marked of) override;
  bool setLoved(Marked of, bool loved) override;
  bool playPause() override;
  /// Goes on at the start of the next track, in the same state; false while stopped.
  bool nextTrack() override;
  /// The same with the track before, or with the current one when it is beyond three seconds.
  bool previousTrack() override;
  bool activate() override { return true; }  ///< it has no window
  bool reveal() override { return current_.has_value(); }

 protected:
  // The present state; the setters change it without a word to anyone.

  /// Null when there is none. A stopped player keeps its current track.
  Track* currentTrack() { return current_ ? &tracks_[*current_] : nullptr; }
  /// None: the player has no current track.
  void setCurrentTrackIndex(std::optional<std::size_t> index);
  void setState(platform::FourCharCode state);  ///< the position runs in statePlaying only
  /// Any position; time does not run on from one beyond the end.
  void setPosition(double seconds);
  /// The marks of a track's album; a track without album is an album of its own.
  Marks& albumMarks(const Track& track);
  void announce() const;  ///< tells that something changed

 private:
  void moveTo(std::size_t index);
  void changeState(platform::FourCharCode state);
  Marks* marks(Marked of);  ///< null without a current track

  std::vector<Track> tracks_;
  std::map<std::string, Marks> albumMarks_;
  std::optional<std::size_t> current_;
  platform::FourCharCode state_ = stateStopped;
  double heldPosition_ = 0;
  platform::TimeInterval heldSince_ = 0;
  std::shared_ptr<platform::NSTimer> endTimer_;
  bool running_ = false;
};

}  // namespace demo
