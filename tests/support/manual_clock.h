// Time that moves when told, and the run loop on it.
#pragma once

#include "platform/loop/run_loop.h"

namespace tests {

/// Drives a run loop by hand: nothing happens until a test lets time pass or the loop turn.
class ManualClock final : public platform::RunLoopDriver {
 public:
  /// 2016-03-05 14:07:09 UTC.
  static constexpr double start = 1457186829;

  platform::RunLoop& runLoop() { return runLoop_; }

  platform::TimeInterval now() const override { return elapsed_; }
  platform::Date date() const override { return {start + elapsed_}; }
  void wakeAt(std::optional<platform::TimeInterval>) override {}
  void wakeNow() override {
    const std::lock_guard lock(mutex_);
    woken_ = true;
  }

  /// Turns the loop until it has nothing left to do at this moment.
  void settle();
  /// Lets time pass, stopping at every timer on the way.
  void advance(platform::TimeInterval seconds);
  /// Lets time pass in the middle of what is under way.
  void pass(platform::TimeInterval seconds) { elapsed_ += seconds; }

 private:
  double elapsed_ = 0;
  mutable std::mutex mutex_;
  bool woken_ = false;  // guarded by mutex_
  platform::RunLoop runLoop_{*this};
};

}  // namespace tests
