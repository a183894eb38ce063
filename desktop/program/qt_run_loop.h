// The run loop's driver on Qt's event loop.
#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QTimer>
#include <atomic>
#include <functional>

#include "platform/loop/run_loop.h"

namespace desktop {

/// Turns the run loop's wishes into events of Qt's loop, one timer for all of them. Destroy it
/// when no other thread can wake it any more.
class QtRunLoop final : public platform::RunLoopDriver {
 public:
  QtRunLoop();

  /// What runs when the time has come: the run loop's pass.
  void setPass(std::function<void()> pass) { pass_ = std::move(pass); }

  platform::TimeInterval now() const override;
  platform::Date date() const override;
  void wakeAt(std::optional<platform::TimeInterval> time) override;
  void wakeNow() override;

 private:
  void runPass();

  std::function<void()> pass_;
  QObject context_;  // what is posted here goes with it
  QTimer timer_;
  QElapsedTimer clock_;
  std::atomic<bool> woken_ = false;  // a pass is on its way already
};

}  // namespace desktop
