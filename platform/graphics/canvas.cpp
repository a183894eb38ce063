#include "platform/graphics/canvas.h"

#include "platform/platform.h"

namespace platform {

NSGraphicsContext::NSGraphicsContext(Canvas& canvas)
    : canvas_(canvas), previous_(platform::current().graphicsContext) {
  platform::current().graphicsContext = this;
}

NSGraphicsContext::~NSGraphicsContext() { platform::current().graphicsContext = previous_; }

NSGraphicsContext* NSGraphicsContext::current() { return platform::current().graphicsContext; }

void setCurrentColor(NSColor color) {
  if (auto* context = NSGraphicsContext::current()) context->color = color;
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

void drawWithRect_options_attributes(const std::string& text, NSRect rect, unsigned options,
                                     const Dictionary& attributes) {
  if (auto* context = NSGraphicsContext::current()) {
    context->canvas().drawText({text, attributes}, rect, options);
  }
}

}  // namespace platform
