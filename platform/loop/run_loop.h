// The main run loop: timers, work handed over from other threads, idle notifications.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <vector>

#include "platform/foundation/date.h"
#include "platform/foundation/object.h"
#include "platform/loop/notification.h"

namespace platform {

/// What drives the run loop: the desktop's event loop, or a manual clock in tests.
class RunLoopDriver {
 public:
  virtual ~RunLoopDriver() = default;
  virtual TimeInterval now() const = 0;  ///< monotonic seconds
  virtual Date date() const = 0;         ///< calendar time
  /// Calls RunLoop::runPass at that monotonic time; replaces the earlier wish. None: not needed.
  virtual void wakeAt(std::optional<TimeInterval> time) = 0;
  /// Calls RunLoop::runPass soon. From any thread.
  virtual void wakeNow() = 0;
};

class NSTimer;

/// The main thread's run loop.
class RunLoop {
 public:
  explicit RunLoop(RunLoopDriver& driver);
  RunLoop(const RunLoop&) = delete;
  RunLoop& operator=(const RunLoop&) = delete;

  /// The run loop of the calling thread; null away from the main thread.
  static RunLoop* currentRunLoop();

  bool isMainThread() const { return std::this_thread::get_id() == mainThread_; }
  TimeInterval now() const { return driver_.now(); }
  Date date() const { return driver_.date(); }

  /// Schedules a timer; it fires in the common modes, so also while the mouse is tracked.
  /// The run loop holds the timer until it fired or was invalidated.
  void addTimer(const std::shared_ptr<NSTimer>& timer);

  /// Runs a task on the main thread, after the present event. From any thread.
  void dispatchAsync(std::function<void()> task);

  /// One pass: the tasks handed over so far, the timers that are due, then, with nothing left to
  /// do at once, the notifications that wait for idle.
  void runPass();

  /// When the next timer is due (monotonic seconds); none without timers.
  std::optional<TimeInterval> nextDeadline() const;

  NSNotificationQueue& notificationQueue() { return notificationQueue_; }
  std::size_t scheduledTimerCount() const;

 private:
  friend class NSTimer;
  friend class NSNotificationQueue;
  void forget(const NSTimer* timer);
  void reschedule();
  void runTasks();
  void fireDueTimers();

  RunLoopDriver& driver_;
  const std::thread::id mainThread_;
  NSNotificationQueue notificationQueue_;
  std::vector<std::shared_ptr<NSTimer>> timers_;  // in the order of their fire times
  mutable std::mutex tasksMutex_;
  std::vector<std::function<void()>> tasks_;  // guarded by tasksMutex_
};

/// A one-shot timer. The target is held weakly: when it is gone the timer does nothing.
class NSTimer : public NSObject {
 public:
  /// A timer that sends action to target after the interval; it must be added to a run loop.
  template <class T>
  static std::shared_ptr<NSTimer> timerWithTimeInterval(TimeInterval interval, T* target,
                                                        bool (T::*action)(NSTimer*)) {
    std::weak_ptr<T> weak = weakReference(target);
    return timerWithBlock(interval, [weak, action](NSTimer* timer) {
      if (const auto strong = weak.lock()) (strong.get()->*action)(timer);
    });
  }
  static std::shared_ptr<NSTimer> timerWithBlock(TimeInterval interval,
                                                 std::function<void(NSTimer*)> block);

  NSTimer(TimeInterval interval, std::function<void(NSTimer*)> block);

  bool isValid() const { return valid_; }
  void invalidate();
  TimeInterval timeInterval() const { return interval_; }

 private:
  friend class RunLoop;
  void fire();

  const TimeInterval interval_;
  std::function<void(NSTimer*)> block_;
  TimeInterval fireTime_ = 0;
  RunLoop* runLoop_ = nullptr;  // set while scheduled
  bool valid_ = true;
};

}  // namespace platform
