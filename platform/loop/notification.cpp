#include "platform/loop/notification.h"
#include "platform/loop/run_loop.h"

#include <algorithm>

#include "platform/platform.h"

namespace platform {

void NSNotificationCenter::add(const NSObject* observer, std::string name, const NSObject* sender,
                               Handler handler) {
  registrations_.push_back(std::make_shared<Registration>(
      Registration{observer, std::move(name), sender, std::move(handler)}));
}

void NSNotificationCenter::removeObserver(const NSObject* observer) {
  std::erase_if(registrations_, [observer](const auto& registration) {
    if (registration->observer != observer) return false;
    registration->removed = true;
    return true;
  });
}

void NSNotificationCenter::removeObserver(const NSObject* observer, const std::string& name) {
  std::erase_if(registrations_, [&](const auto& registration) {
    if (registration->observer != observer || registration->name != name) return false;
    registration->removed = true;
    return true;
  });
}

void NSNotificationCenter::postNotification(const NSNotification& notification) {
  const auto registrations = registrations_;
  for (const auto& registration : registrations) {
    if (registration->removed || registration->name != notification.name()) continue;
    if (registration->sender != nullptr && registration->sender != notification.objectIdentity()) {
      continue;
    }
    registration->handler(notification);
  }
}

std::size_t NSNotificationCenter::registrationCount(const NSObject* observer) const {
  return static_cast<std::size_t>(std::count_if(
      registrations_.begin(), registrations_.end(), [observer](const auto& registration) {
        return observer == nullptr || registration->observer == observer;
      }));
}

NSNotificationQueue* NSNotificationQueue::defaultQueue() {
  RunLoop* runLoop = RunLoop::currentRunLoop();
  return runLoop != nullptr ? &runLoop->notificationQueue() : nullptr;
}

void NSNotificationQueue::enqueueNotification(NSNotification notification, NSPostingStyle,
                                              unsigned coalesceMask) {
  const auto equals = [&](const NSNotification& waiting) {
    const bool sameName = waiting.name() == notification.name();
    const bool sameSender = waiting.objectIdentity() == notification.objectIdentity();
    return (sameName || (coalesceMask & NSNotificationCoalescingOnName) == 0) &&
           (sameSender || (coalesceMask & NSNotificationCoalescingOnSender) == 0);
  };
  if (coalesceMask != NSNotificationNoCoalescing &&
      std::any_of(waiting_.begin(), waiting_.end(), equals)) {
    return;
  }
  waiting_.push_back(std::move(notification));
  if (RunLoop* runLoop = RunLoop::currentRunLoop()) runLoop->driver_.wakeNow();
}

void NSNotificationQueue::postWaiting(NSNotificationCenter& center) {
  const auto notifications = std::exchange(waiting_, {});
  for (const NSNotification& notification : notifications) center.postNotification(notification);
}

}  // namespace platform
