#include "platform/loop/dispatch.h"

#include <utility>

#include "platform/platform.h"

namespace platform {

WorkerPool::WorkerPool(std::size_t maximumThreads) : maximumThreads_(maximumThreads) {}

WorkerPool::~WorkerPool() {
  std::deque<std::function<void()>> dropped;
  {
    const std::lock_guard lock(mutex_);
    stopping_ = true;
    dropped.swap(tasks_);
  }
  wake_.notify_all();
  for (std::thread& thread : threads_) thread.join();
}

void WorkerPool::async(std::function<void()> task) {
  {
    const std::lock_guard lock(mutex_);
    if (stopping_) return;
    tasks_.push_back(std::move(task));
    if (tasks_.size() > idleThreads_ && threads_.size() < maximumThreads_)
      threads_.emplace_back([this] { work(); });
  }
  wake_.notify_one();
}

void WorkerPool::work() {
  std::unique_lock lock(mutex_);
  while (true) {
    ++idleThreads_;
    wake_.wait(lock, [this] { return stopping_ || !tasks_.empty(); });
    --idleThreads_;
    if (stopping_) return;
    std::function<void()> task = std::move(tasks_.front());
    tasks_.pop_front();
    lock.unlock();
    task();
    task = nullptr;  // what the task holds goes while no lock is held
    lock.lock();
  }
}

DispatchQueue* dispatch_get_global_queue() { return current().globalQueue; }

}  // namespace platform
