// The built-in music player: it stands in when no other runs, and plays the part of one in tests.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "demo/demo_library.h"
#include "platform/application/scripting.h"
#include "platform/application/workspace.h"
#include "platform/loop/run_loop.h"

namespace demo {

inline constexpr const char* playerBundleIdentifier = "com.apple.iTunes";
inline constexpr const char* playerInfoNotification = "com.apple.iTunes.playerInfo";

// Player states.
inline constexpr platform::FourCharCode stateStopped = platform::code("kPSS");
inline constexpr platform::FourCharCode statePlaying = platform::code("kPSP");
inline constexpr platform::FourCharCode statePaused = platform::code("kPSp");

/// A scriptable player with a small library, played in a circle. Everything happens on the main
/// thread and on the clock of the installed platform's run loop, which must outlive the player;
/// while a track with a length plays, one timer waits there for its end.
///
/// As with a player in a process of its own, signals come after the command has returned: they
/// are handed to the run loop and arrive in its next pass.
class DemoPlayer : public platform::ScriptingTransport {
 public:
  explicit DemoPlayer(std::vector<Track> tracks = library());
  ~DemoPlayer() override;
  DemoPlayer(const DemoPlayer&) = delete;
  DemoPlayer& operator=(const DemoPlayer&) = delete;

  /// Answers nothing for other applications, while the player does not run, and for what it does
  /// not know.
  std::optional<platform::ScriptingReply> send(const platform::ScriptingRequest& request) override;

  // The process. A new player does not run.

  /// Starts the process at the start of its current track (at first the first one). Does nothing
  /// when it runs already.
  void launch(platform::FourCharCode state = stateStopped);
  /// Ends the process; the library, the marks and the current track stay as they are.
  void quit();
  bool isRunning() const { return running_; }
  /// The running instances with a bundle identifier (compared ignoring case).
  platform::ObjectArray runningApplications(const std::string& bundleIdentifier) const;
  /// Lists an instance that has terminated before any other.
  void setListsTerminatedInstance(bool lists) { listsTerminatedInstance_ = lists; }

  // What a listener does in the player itself. Every change is announced; nothing happens while
  // the player does not run.

  void play();
  void pause();
  void stop();
  void playPause();
  /// Goes on at the start of the next track, in the same state; nothing while stopped.
  void nextTrack();
  /// The same with the track before, or with the current one when it is beyond three seconds.
  void previousTrack();
  void playTrack(std::size_t index);
  /// Moves within the current track; false when stopped or when the position is not a number.
  bool seek(double seconds);
  void announce() const;  ///< tells that something changed

  // The present state. The setters change it without a word to anyone.

  std::vector<Track>& tracks() { return tracks_; }
  /// Null when there is none. A stopped player keeps its current track.
  Track* currentTrack();
  std::optional<std::size_t> currentTrackIndex() const { return current_; }
  /// None: the player has no current track.
  void setCurrentTrackIndex(std::optional<std::size_t> index);
  platform::FourCharCode state() const { return state_; }
  /// Any code; the position runs in kPlaying only.
  void setState(platform::FourCharCode state);
  double position() const;  ///< seconds from the start of the current track
  /// Any position; time does not run on from one beyond the end.
  void setPosition(double seconds);
  /// The marks of a track's album; a track without album is an album of its own.
  Marks& albumMarks(const Track& track);

  // What was asked of it.

  std::size_t activationCount() const { return activationCount_; }
  /// The names of the tracks that were shown in the player's window.
  const std::vector<std::string>& revealedTracks() const { return revealedTracks_; }
  std::size_t requestCount() const { return requestCount_; }
  /// The requests as text while logging is on, such as "get pTrk.pnam", "get pTrk.cArt[0].pRaw",
  /// "count pTrk.cArt", "resolve pTrk", "set pPos 12.5", "set pTrk.pLov true",
  /// "command hook/Next", "command pTrk hook/Revl", "command misc/actv".
  const std::vector<std::string>& log() const { return log_; }
  void setLogging(bool logging) { logging_ = logging; }
  void clearLog();  ///< also sets the request count to 0

  // Misbehaviour, for tests.

  /// Runs, but answers nothing and does nothing.
  void setSilent(bool silent) { silent_ = silent; }
  /// Answers nothing to writes and leaves everything as it is.
  void setRefusesWrites(bool refuses) { refusesWrites_ = refuses; }
  /// Answers every question whose path ends in the code with this reply; none: no answer.
  void setReply(platform::FourCharCode code, std::optional<platform::ScriptingReply> reply);
  /// Called with each request before it is answered; may change or quit the player.
  void setRequestHook(std::function<void(const platform::ScriptingRequest&)> hook);

 private:
  using Request = platform::ScriptingRequest;
  using Reply = std::optional<platform::ScriptingReply>;

  Reply get(const platform::ScriptingPath& path);
  Reply trackProperty(platform::FourCharCode code);
  Reply count(const platform::ScriptingPath& path);
  Reply resolve(const platform::ScriptingPath& path);
  Reply set(const Request& request);
  bool setTrackProperty(platform::FourCharCode code, const platform::Value& value);
  Reply command(const Request& request);

  void moveTo(std::size_t index);
  void changeState(platform::FourCharCode state);
  void runFrom(double seconds);  ///< the position from which time runs on

  std::vector<Track> tracks_;
  std::map<std::string, Marks> albumMarks_;
  std::optional<std::size_t> current_;
  platform::FourCharCode state_ = stateStopped;
  double heldPosition_ = 0;
  platform::TimeInterval heldSince_ = 0;
  std::shared_ptr<platform::NSTimer> endTimer_;
  bool running_ = false;
  bool listsTerminatedInstance_ = false;

  std::size_t activationCount_ = 0;
  std::vector<std::string> revealedTracks_;
  std::size_t requestCount_ = 0;
  std::vector<std::string> log_;
  bool logging_ = false;

  bool silent_ = false;
  bool refusesWrites_ = false;
  std::map<platform::FourCharCode, Reply> replies_;
  std::function<void(const Request&)> requestHook_;
};

}  // namespace demo
