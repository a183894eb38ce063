#include "platform/graphics/graphics.h"

#include "platform/platform.h"

namespace platform {

std::shared_ptr<NSImage> imageWithData(const Data& data) {
  Graphics* graphics = current().graphics;
  return graphics != nullptr && !data.isEmpty() ? graphics->decode(data) : nullptr;
}

NSRect boundingRectWithSize_options_attributes(const std::string& text, NSSize size,
                                               unsigned options, const Dictionary& attributes) {
  Graphics* graphics = current().graphics;
  if (graphics == nullptr) return NSZeroRect;
  return {{0, 0}, graphics->measure({text, attributes}, size, options)};
}

}  // namespace platform
