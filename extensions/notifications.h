// Posting notifications for an idle moment, and reading what they carry.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "extensions/collections.h"
#include "platform/loop/notification.h"

namespace virelune {

/// Queues a notification about the receiver; it is delivered when the run loop is next idle.
/// False, and nothing posted, for an empty name, without a receiver, or away from the main thread.
bool vl_postNotificationWithName(platform::NSObject* receiver, const std::string& name);
bool vl_postNotificationWithName_andUserInfo(platform::NSObject* receiver, const std::string& name,
                                             std::optional<platform::Dictionary> userInfo);

/// Queues a notification for the idle run loop; equal ones in a row are all delivered. False when
/// the calling thread has no notification queue.
bool vl_post(platform::NSNotification notification);

/// The notification's object if it is a T or of a class derived from it; else null.
template <class T>
std::shared_ptr<T> vl_objectForClass(const platform::NSNotification* notification) {
  if (notification == nullptr) return nullptr;
  return std::dynamic_pointer_cast<T>(notification->object());
}

/// The user-info value of a key if it is a T; else none.
template <class T>
std::optional<T> vl_userInfoObjectForKey_withClass(const platform::NSNotification* notification,
                                                   std::string_view key) {
  if (notification == nullptr) return std::nullopt;
  return vl_objectForKey_withClass<T>(notification->userInfo(), key);
}

}  // namespace virelune
