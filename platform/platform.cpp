#include "platform/platform.h"

#include <atomic>

#include "platform/loop/notification.h"
#include "platform/view/event.h"

namespace platform {

namespace {

Platform& emptyPlatform() {
  static Platform empty;
  return empty;
}

std::atomic<Platform*>& installed() {
  static std::atomic<Platform*> platform = nullptr;
  return platform;
}

}  // namespace

Platform::Platform()
    : application(std::make_unique<NSApplication>()),
      defaultCenter(std::make_unique<NSNotificationCenter>()),
      distributedCenter(std::make_unique<NSNotificationCenter>()) {}

Platform::~Platform() = default;

Platform& current() {
  Platform* platform = installed().load(std::memory_order_acquire);
  return platform != nullptr ? *platform : emptyPlatform();
}

PlatformScope::PlatformScope(Platform& platform)
    : previous_(installed().exchange(&platform, std::memory_order_acq_rel)) {}

PlatformScope::~PlatformScope() { installed().store(previous_, std::memory_order_release); }

}  // namespace platform
