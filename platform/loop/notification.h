// Notifications, the centres that deliver them, and the queue that waits for an idle run loop.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/foundation/object.h"
#include "platform/foundation/value.h"

namespace platform {

/// A named message, with the object it is about and further values. The object is not owned.
class NSNotification {
 public:
  explicit NSNotification(std::string name, const std::shared_ptr<NSObject>& object = nullptr,
                          std::optional<Dictionary> userInfo = std::nullopt)
      : name_(std::move(name)),
        object_(object),
        identity_(object.get()),
        userInfo_(std::move(userInfo)) {}

  const std::string& name() const { return name_; }
  std::shared_ptr<NSObject> object() const { return object_.lock(); }
  /// Tells senders apart, also when the sender is gone.
  const void* objectIdentity() const { return identity_; }
  const std::optional<Dictionary>& userInfo() const { return userInfo_; }

 private:
  std::string name_;
  std::weak_ptr<NSObject> object_;
  const void* identity_;
  std::optional<Dictionary> userInfo_;
};

/// Delivers notifications to observers, at once and in the order in which they registered.
/// Observers are held weakly; one that is removed during a delivery is not called any more, one
/// that is added during it waits for the next. Main thread only.
class NSNotificationCenter {
 public:
  NSNotificationCenter() = default;
  NSNotificationCenter(const NSNotificationCenter&) = delete;
  NSNotificationCenter& operator=(const NSNotificationCenter&) = delete;

  /// Registers observer's handler for a name, from one sender only when sender is given.
  template <class T>
  void addObserver(T* observer, bool (T::*handler)(const NSNotification*), std::string name,
                   const NSObject* sender = nullptr) {
    std::weak_ptr<T> weak = weakReference(observer);
    add(observer, std::move(name), sender, [weak, handler](const NSNotification& notification) {
      if (const auto strong = weak.lock()) (strong.get()->*handler)(&notification);
    });
  }

  /// Removes an observer for every name, or for one name.
  void removeObserver(const NSObject* observer);
  void removeObserver(const NSObject* observer, const std::string& name);

  void postNotification(const NSNotification& notification);

  /// How many registrations there are; for one observer when given.
  std::size_t registrationCount(const NSObject* observer = nullptr) const;

 private:
  using Handler = std::function<void(const NSNotification&)>;
  struct Registration {
    const NSObject* observer;
    std::string name;
    const NSObject* sender;
    Handler handler;
    bool removed = false;
  };
  void add(const NSObject* observer, std::string name, const NSObject* sender, Handler handler);

  std::vector<std::shared_ptr<Registration>> registrations_;
};

enum NSPostingStyle { NSPostWhenIdle = 1 };
enum NSNotificationCoalescing : unsigned {
  NSNotificationNoCoalescing = 0,
  NSNotificationCoalescingOnName = 1,
  NSNotificationCoalescingOnSender = 2
};

/// Holds notifications until the main run loop is idle, then posts them to the default centre.
class NSNotificationQueue {
 public:
  /// The queue of the calling thread; null away from the main thread.
  static NSNotificationQueue* defaultQueue();

  /// Coalescing drops the new notification while an equal one (by the mask) is still waiting.
  void enqueueNotification(NSNotification notification, NSPostingStyle style,
                           unsigned coalesceMask = NSNotificationCoalescingOnName |
                                                   NSNotificationCoalescingOnSender);

  bool isEmpty() const { return waiting_.empty(); }

  /// Posts what waits now; what its observers enqueue waits for the next idle moment.
  void postWaiting(NSNotificationCenter& center);

 private:
  std::vector<NSNotification> waiting_;
};

}  // namespace platform
