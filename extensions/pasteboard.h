// Where a drop goes.
#pragma once

#include <optional>
#include <string>

#include "platform/view/pasteboard.h"

namespace virelune {

/// The path of the folder that takes the file promised on a pasteboard; none when the receiver
/// has named none, without a pasteboard, and when it has no name.
std::optional<std::string> vl_copyPasteLocation(const platform::NSPasteboard* pasteboard);

}  // namespace virelune
