#include "desktop/program/worker_pool.h"

#include <tuple>
#include <utility>

namespace desktop {

WorkerPool::WorkerPool(int maximumThreads, std::chrono::milliseconds patience)
    : patience_(patience),
      isStopping_(std::make_shared<std::atomic<bool>>(false)),
      threads_(std::make_unique<QThreadPool>()) {
  threads_->setMaxThreadCount(maximumThreads);
}

WorkerPool::~WorkerPool() {
  *isStopping_ = true;  // a task under way may still hand over others
  threads_->clear();
  // The pool's own end would wait for as long as it takes.
  if (!threads_->waitForDone(static_cast<int>(patience_.count()))) std::ignore = threads_.release();
}

void WorkerPool::async(std::function<void()> task) {
  threads_->start([isStopping = isStopping_, task = std::move(task)] {
    if (!*isStopping) task();
  });
}

}  // namespace desktop
