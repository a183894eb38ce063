#include "desktop/program/worker_pool.h"

#include <utility>

namespace desktop {

WorkerPool::WorkerPool(int maximumThreads) { threads_.setMaxThreadCount(maximumThreads); }

WorkerPool::~WorkerPool() {
  isStopping_ = true;  // a task under way may still hand over others
  threads_.clear();
  threads_.waitForDone();
}

void WorkerPool::async(std::function<void()> task) {
  threads_.start([this, task = std::move(task)] {
    if (!isStopping_) task();
  });
}

}  // namespace desktop
