// Work moved off the main thread.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <functional>
#include <mutex>
#include <thread>
#include <vector>

namespace platform {

/// Runs tasks away from the thread that hands them over.
class DispatchQueue {
 public:
  virtual ~DispatchQueue() = default;
  /// Hands a task over and returns at once. From any thread.
  virtual void async(std::function<void()> task) = 0;
};

/// A concurrent queue on a few threads, which start when there is work for them. Its owner
/// destroys it before the parts of the platform that tasks use.
class WorkerPool final : public DispatchQueue {
 public:
  explicit WorkerPool(std::size_t maximumThreads = 4);
  /// Drops the tasks that have not begun and waits for those that have.
  ~WorkerPool() override;
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;

  void async(std::function<void()> task) override;

 private:
  void work();

  const std::size_t maximumThreads_;
  std::mutex mutex_;
  std::condition_variable wake_;
  std::deque<std::function<void()>> tasks_;  // guarded by mutex_, as are the next three
  std::vector<std::thread> threads_;
  std::size_t idleThreads_ = 0;
  bool stopping_ = false;
};

/// The concurrent queue that the whole program shares; null when there is none.
DispatchQueue* dispatch_get_global_queue();

}  // namespace platform
