// The part of System Events' scripting dictionary that concerns login items.
#pragma once

#include "platform/application/scripting.h"

namespace platform::system_events {

inline constexpr const char* bundleIdentifier = "com.apple.systemevents";

inline constexpr FourCharCode loginItemClass = code("logi");
inline constexpr FourCharCode path = code("ppth");

}  // namespace platform::system_events
