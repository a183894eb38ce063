// The concurrent queue of the program.
#pragma once

#include <QtCore/QThreadPool>
#include <atomic>

#include "platform/loop/dispatch.h"

namespace desktop {

/// Runs tasks on a few threads, which start when there is work for them and end after a while
/// without. Its owner destroys it before the parts of the platform that tasks use.
class WorkerPool final : public platform::DispatchQueue {
 public:
  explicit WorkerPool(int maximumThreads = 4);
  /// Drops the tasks that have not begun and waits for those that have.
  ~WorkerPool() override;

  void async(std::function<void()> task) override;

 private:
  std::atomic<bool> isStopping_ = false;
  QThreadPool threads_;
};

}  // namespace desktop
