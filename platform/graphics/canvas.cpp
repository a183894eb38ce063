#include "platform/graphics/canvas.h"

#include <algorithm>

#include "platform/graphics/graphics.h"
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

void drawTextCentredInRect(Canvas& canvas, const NSAttributedString& text, NSRect rect,
                           unsigned options, double tallest) {
  Graphics* graphics = platform::current().graphics;
  if (graphics == nullptr) return;
  const double measured = graphics->measure(text, {rect.size.width, tallest}, options).height;
  const double height = std::min(measured, rect.size.height);
  rect.origin.y += (rect.size.height - height) / 2;
  rect.size.height = height;
  canvas.drawText(text, rect, options);
}

}  // namespace platform
