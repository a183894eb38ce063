// The concurrent queue of the program.
#pragma once

#include <QtCore/QThreadPool>
#include <atomic>
#include <chrono>
#include <memory>

#include "platform/loop/dispatch.h"

namespace desktop {

/// Runs tasks on a few threads, which start when there is work for them and end after a while
/// without. Its owner destroys it before the parts of the platform that tasks use.
class WorkerPool final : public platform::DispatchQueue {
 public:
  static constexpr std::chrono::milliseconds untilDone{-1};

  /// Tasks that may never end, such as reading from a disk that is gone, need a patience: at the
  /// end what is left of them stays behind.
  explicit WorkerPool(int maximumThreads = 4, std::chrono::milliseconds patience = untilDone);
  /// Drops the tasks that have not begun and waits for those that have.
  ~WorkerPool() override;

  void async(std::function<void()> task) override;

 private:
  const std::chrono::milliseconds patience_;
  const std::shared_ptr<std::atomic<bool>> isStopping_;
  std::unique_ptr<QThreadPool> threads_;
};

}  // namespace desktop
