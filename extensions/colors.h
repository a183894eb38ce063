// The colours the panels agree on.
#pragma once

#include <optional>

#include "platform/foundation/color.h"

namespace virelune {

/// The colour of the panels' texts and titles: the system's label colour.
inline std::optional<platform::NSColor> vl_widgetTextColor() {
  return platform::NSColor::labelColor();
}

}  // namespace virelune
