// Work moved off the main thread.
#pragma once

#include <functional>

namespace platform {

/// Runs tasks away from the thread that hands them over.
class DispatchQueue {
 public:
  virtual ~DispatchQueue() = default;
  /// Hands a task over and returns at once. From any thread.
  virtual void async(std::function<void()> task) = 0;
};

/// The concurrent queue that the whole program shares; null when there is none.
DispatchQueue* dispatch_get_global_queue();

}  // namespace platform
