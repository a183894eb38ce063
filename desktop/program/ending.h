// The ends of the program: signals, a display that goes, and all being said.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <optional>

namespace desktop {

/// Ends the event loop at SIGTERM, SIGINT and SIGHUP; a second signal ends the program as usual.
/// One object at a time.
class EndingSignals final : public QObject {
 public:
  EndingSignals();
  ~EndingSignals() override;

 private:
  std::optional<QSocketNotifier> notifier_;
};

/// Qt ends the program on the spot when it cannot reach the display, or loses it. While this object
/// lives that is told in one line, after what is to be kept has been kept. One object at a time.
class LostDisplay final {
 public:
  /// Before the display is reached.
  LostDisplay();
  ~LostDisplay();
  LostDisplay(const LostDisplay&) = delete;
  LostDisplay& operator=(const LostDisplay&) = delete;

  /// The display has been reached; this is done when it goes.
  void setLastAct(std::function<void()> lastAct);
};

/// Ends the program when all is said. What it holds goes with it; taking leave of each part of the
/// bus, one by one, would take a good part of the time that a verb takes.
[[noreturn]] inline void endAtOnce(int status) {
  std::cout.flush();
  std::_Exit(status);
}

}  // namespace desktop
