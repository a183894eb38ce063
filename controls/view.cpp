#include "controls/view.h"

#include "platform/graphics/canvas.h"
#include "platform/graphics/graphics.h"

using platform::NSColor;
using platform::NSEvent;
using platform::NSRect;

namespace virelune {

bool VLView::setBackgroundColor(std::optional<NSColor> color) {
  setContentBackgroundColor(color);
  setNeedsDisplay(true);
  return true;
}

bool VLView::setEscKeyEndsFullscreenMode(bool ends) {
  setContentEscKeyEndsFullscreenMode(ends);
  return true;
}

void VLView::drawRect(NSRect dirtyRect) {
  NSView::drawRect(dirtyRect);
  drawBackgroundColorInRect(dirtyRect);
}

bool VLView::drawBackgroundColorInRect(NSRect rect) {
  platform::setCurrentColor(backgroundColor().value_or(NSColor::clearColor()));
  platform::NSRectFillUsingOperation(rect, platform::NSCompositeSourceOver);
  return true;
}

void VLView::keyDown(const NSEvent* event) {
  if (escKeyEndsFullscreenMode() && event != nullptr &&
      event->keyCode == platform::NSKeyCodeEscape && isInFullScreenMode()) {
    exitFullScreenModeWithOptions();
    return;
  }
  NSView::keyDown(event);
}

}  // namespace virelune
