#include "platform/loop/run_loop.h"

#include <algorithm>

#include "platform/platform.h"

namespace platform {

RunLoop::RunLoop(RunLoopDriver& driver)
    : driver_(driver), mainThread_(std::this_thread::get_id()) {}

RunLoop* RunLoop::currentRunLoop() {
  RunLoop* runLoop = current().runLoop;
  return runLoop != nullptr && runLoop->isMainThread() ? runLoop : nullptr;
}

void RunLoop::addTimer(const std::shared_ptr<NSTimer>& timer) {
  if (!timer || !timer->isValid() || timer->runLoop_ != nullptr) return;
  timer->runLoop_ = this;
  timer->fireTime_ = now() + timer->timeInterval();
  const auto later =
      std::upper_bound(timers_.begin(), timers_.end(), timer,
                       [](const auto& a, const auto& b) { return a->fireTime_ < b->fireTime_; });
  timers_.insert(later, timer);
  reschedule();
}

void RunLoop::forget(const NSTimer* timer) {
  std::erase_if(timers_, [timer](const auto& scheduled) { return scheduled.get() == timer; });
  reschedule();
}

void RunLoop::reschedule() { driver_.wakeAt(nextDeadline()); }

std::optional<TimeInterval> RunLoop::nextDeadline() const {
  return timers_.empty() ? std::nullopt : std::optional(timers_.front()->fireTime_);
}

std::size_t RunLoop::scheduledTimerCount() const { return timers_.size(); }

void RunLoop::dispatchAsync(std::function<void()> task) {
  {
    const std::lock_guard lock(tasksMutex_);
    tasks_.push_back(std::move(task));
  }
  driver_.wakeNow();
}

void RunLoop::runTasks() {
  std::vector<std::function<void()>> tasks;
  {
    const std::lock_guard lock(tasksMutex_);
    tasks.swap(tasks_);
  }
  for (const auto& task : tasks) task();
}

void RunLoop::fireDueTimers() {
  // Timers that are added while these fire belong to the next pass, even when due at once.
  const TimeInterval time = now();
  std::vector<std::shared_ptr<NSTimer>> due;
  for (const auto& timer : timers_) {
    if (timer->fireTime_ <= time) due.push_back(timer);
  }
  for (const auto& timer : due) timer->fire();
}

void RunLoop::runPass() {
  runTasks();
  fireDueTimers();
  const bool idle = [this] {
    const std::lock_guard lock(tasksMutex_);
    return tasks_.empty();
  }();
  if (idle) notificationQueue_.postWaiting(*current().defaultCenter);
  reschedule();
}

std::shared_ptr<NSTimer> NSTimer::timerWithBlock(TimeInterval interval,
                                                 std::function<void(NSTimer*)> block) {
  return make<NSTimer>(interval, std::move(block));
}

NSTimer::NSTimer(TimeInterval interval, std::function<void(NSTimer*)> block)
    : interval_(interval), block_(std::move(block)) {}

void NSTimer::invalidate() {
  if (!valid_) return;
  valid_ = false;
  if (RunLoop* runLoop = std::exchange(runLoop_, nullptr)) runLoop->forget(this);
}

void NSTimer::fire() {
  if (!valid_) return;
  const auto self = shared_from_this();
  invalidate();
  block_(this);
}

}  // namespace platform
