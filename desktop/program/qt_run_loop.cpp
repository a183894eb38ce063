#include "desktop/program/qt_run_loop.h"

#include <QtCore/QDateTime>
#include <algorithm>
#include <chrono>
#include <cmath>

namespace desktop {

QtRunLoop::QtRunLoop() {
  clock_.start();
  timer_.setSingleShot(true);
  timer_.setTimerType(Qt::PreciseTimer);
  QObject::connect(&timer_, &QTimer::timeout, &context_, [this] { runPass(); });
}

platform::TimeInterval QtRunLoop::now() const {
  return static_cast<double>(clock_.nsecsElapsed()) / 1e9;
}

platform::Date QtRunLoop::date() const {
  return {static_cast<double>(QDateTime::currentMSecsSinceEpoch()) / 1000};
}

void QtRunLoop::wakeAt(std::optional<platform::TimeInterval> time) {
  if (!time) {
    timer_.stop();
    return;
  }
  constexpr double longestWait = 24.0 * 3600;  // a later wish is asked for again by the pass
  const double seconds = std::clamp(*time - now(), 0.0, longestWait);
  // Rounded up: a pass that comes too early would only ask again.
  timer_.start(std::chrono::milliseconds(static_cast<int>(std::ceil(seconds * 1000))));
}

void QtRunLoop::wakeNow() {
  if (woken_.exchange(true)) return;
  QMetaObject::invokeMethod(
      &context_,
      [this] {
        woken_ = false;
        runPass();
      },
      Qt::QueuedConnection);
}

void QtRunLoop::runPass() {
  if (pass_) pass_();
}

}  // namespace desktop
