// The ends that come from outside: signals, and a display that goes.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QSocketNotifier>
#include <functional>
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

}  // namespace desktop
