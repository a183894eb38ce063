#include "extensions/pasteboard.h"

namespace virelune {

std::optional<std::string> vl_copyPasteLocation(const platform::NSPasteboard* pasteboard) {
  if (pasteboard == nullptr || pasteboard->name().empty()) return std::nullopt;
  return pasteboard->pasteLocation();
}

}  // namespace virelune
