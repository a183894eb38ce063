// Time that moves when told, and the run loop on it.
#pragma once

#include <atomic>

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
    woken_ = true;
    woken_.notify_all();
  }

  /// Turns the loop until it has nothing left to do at this moment.
  void settle();
  /// Waits for another thread to hand work over.
  void waitForWork() const { woken_.wait(false); }
  /// Lets time pass, stopping at every timer on the way.
  void advance(platform::TimeInterval seconds);
  /// Lets time pass in the middle of what is under way.
  void pass(platform::TimeInterval seconds) { elapsed_ += seconds; }

 private:
  double elapsed_ = 0;
  std::atomic<bool> woken_ = false;
  platform::RunLoop runLoop_{*this};
};

}  // namespace tests
