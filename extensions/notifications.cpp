#include "extensions/notifications.h"

#include <utility>

using platform::NSNotification;
using platform::NSNotificationQueue;

namespace virelune {

bool vl_postNotificationWithName(platform::NSObject* receiver, const std::string& name) {
  return vl_postNotificationWithName_andUserInfo(receiver, name, std::nullopt);
}

bool vl_postNotificationWithName_andUserInfo(platform::NSObject* receiver, const std::string& name,
                                             std::optional<platform::Dictionary> userInfo) {
  if (receiver == nullptr || name.empty()) return false;
  return vl_post(NSNotification(name, receiver->weak_from_this().lock(), std::move(userInfo)));
}

bool vl_post(NSNotification notification) {
  auto* queue = NSNotificationQueue::defaultQueue();
  if (queue == nullptr) return false;
  queue->enqueueNotification(std::move(notification), platform::NSPostWhenIdle,
                             platform::NSNotificationNoCoalescing);
  return true;
}

}  // namespace virelune
