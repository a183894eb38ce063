#include "platform/platform.h"

#include <atomic>

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

Platform& current() {
  Platform* platform = installed().load(std::memory_order_acquire);
  return platform != nullptr ? *platform : emptyPlatform();
}

PlatformScope::PlatformScope(Platform& platform)
    : previous_(installed().exchange(&platform, std::memory_order_acq_rel)) {}

PlatformScope::~PlatformScope() { installed().store(previous_, std::memory_order_release); }

std::uint64_t NSEvent::pressedMouseButtons() { return current().application.pressedMouseButtons(); }

}  // namespace platform
