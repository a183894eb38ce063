// One way to hear of everything that may have changed about the player that is followed.
#pragma once

#include <functional>
#include <memory>
#include <utility>

#include "platform/foundation/object.h"
#include "platform/loop/notification.h"

namespace desktop {

/// Posted beside the player's own notification, for what no panel shows: the volume, what the
/// player can do.
inline constexpr const char* playerDetailNotification = "org.virelune.playerDetail";

/// Calls back at each announcement of the player on the installed platform, while it lives.
class PlayerChanges final : public platform::NSObject {
 public:
  static std::shared_ptr<PlayerChanges> observe(std::function<void()> changed);

  explicit PlayerChanges(std::function<void()> changed) : changed_(std::move(changed)) {}

 private:
  bool received(const platform::NSNotification* notification);

  const std::function<void()> changed_;
};

}  // namespace desktop
