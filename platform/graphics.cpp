#include "platform/graphics.h"

#include "platform/platform.h"

namespace platform {

std::shared_ptr<NSImage> imageNamed(const std::string& name) {
  NSBundle* bundle = NSBundle::mainBundle();
  return bundle != nullptr ? bundle->imageForResource(name) : nullptr;
}

std::shared_ptr<NSImage> imageWithData(const Data& data) {
  Graphics* graphics = current().graphics;
  return graphics != nullptr && !data.isEmpty() ? graphics->decode(data) : nullptr;
}

NSGraphicsContext::NSGraphicsContext(Canvas& canvas)
    : canvas_(canvas), previous_(platform::current().graphicsContext) {
  platform::current().graphicsContext = this;
}

NSGraphicsContext::~NSGraphicsContext() { platform::current().graphicsContext = previous_; }

NSGraphicsContext* NSGraphicsContext::current() { return platform::current().graphicsContext; }

void NSColor::set() const {
  if (auto* context = NSGraphicsContext::current()) context->color = *this;
}

void NSRectFillUsingOperation(NSRect rect, NSCompositingOperation) {
  auto* context = NSGraphicsContext::current();
  if (context == nullptr || rect.isEmpty()) return;
  context->canvas().fillRect(rect, context->color);
}

void drawImageInRect(const NSImage& image, NSRect rect, NSCompositingOperation, double fraction) {
  auto* context = NSGraphicsContext::current();
  if (context == nullptr || rect.isEmpty()) return;
  context->canvas().drawImage(image, rect, fraction);
}

NSRect boundingRectWithSize_options_attributes(const std::string& text, NSSize size,
                                               unsigned options, const Dictionary& attributes) {
  Graphics* graphics = current().graphics;
  if (graphics == nullptr) return NSZeroRect;
  return {{0, 0}, graphics->measure({text, attributes}, size, options)};
}

void drawWithRect_options_attributes(const std::string& text, NSRect rect, unsigned options,
                                     const Dictionary& attributes) {
  if (auto* context = NSGraphicsContext::current()) {
    context->canvas().drawText({text, attributes}, rect, options);
  }
}

}  // namespace platform
