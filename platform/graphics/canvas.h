// The canvas that a view paints on, and the drawing that is in progress.
#pragma once

#include <string>

#include "platform/foundation/attributed_string.h"
#include "platform/foundation/color.h"
#include "platform/foundation/geometry.h"
#include "platform/foundation/image.h"

namespace platform {

enum NSStringDrawingOptions : unsigned {
  NSStringDrawingUsesLineFragmentOrigin = 1,
  NSStringDrawingTruncatesLastVisibleLine = 32
};

enum NSCompositingOperation { NSCompositeSourceOver = 2 };

/// What a view paints on. Coordinates are the current view's own, y upwards; the canvas keeps
/// the stack of origins, clips and opacities.
class Canvas {
 public:
  virtual ~Canvas() = default;

  virtual void save() = 0;
  virtual void restore() = 0;
  virtual void translate(double dx, double dy) = 0;
  /// Restricts drawing to the rectangle, with rounded corners when the radius is above 0.
  virtual void clip(NSRect rect, double cornerRadius) = 0;
  /// Multiplies the opacity (0…1) of all that follows.
  virtual void multiplyAlpha(double alpha) = 0;

  /// Fills source-over; an empty or negative rectangle draws nothing.
  virtual void fillRect(NSRect rect, NSColor color) = 0;
  /// Fills a rectangle with rounded corners, source-over.
  virtual void fillRoundedRect(NSRect rect, double cornerRadius, NSColor color) = 0;
  /// Draws the whole image scaled into the rectangle.
  virtual void drawImage(const NSImage& image, NSRect rect, double fraction) = 0;
  /// Lays the text out from the top of the rectangle, wrapped at word boundaries to its width.
  /// Lines that do not fit its height are left out; with NSStringDrawingTruncatesLastVisibleLine
  /// the last one that fits then ends in an ellipsis. The first line is always drawn.
  virtual void drawText(const NSAttributedString& text, NSRect rect, unsigned options) = 0;
};

/// The drawing in progress: set while views paint, null outside. Main thread only.
class NSGraphicsContext {
 public:
  /// Makes a canvas the current one for the life of this object.
  explicit NSGraphicsContext(Canvas& canvas);
  ~NSGraphicsContext();
  NSGraphicsContext(const NSGraphicsContext&) = delete;
  NSGraphicsContext& operator=(const NSGraphicsContext&) = delete;

  static NSGraphicsContext* current();
  Canvas& canvas() { return canvas_; }

  NSColor color = NSColor::colorWithRGBA(0, 0, 0, 1);  ///< the colour fills use

 private:
  Canvas& canvas_;
  NSGraphicsContext* previous_;
};

/// Makes a colour the current one of the current context.
void setCurrentColor(NSColor color);

/// Fills with the current colour of the current context.
void NSRectFillUsingOperation(NSRect rect, NSCompositingOperation operation);

/// Draws the whole image scaled into the rectangle of the current context.
void drawImageInRect(const NSImage& image, NSRect rect, NSCompositingOperation operation,
                     double fraction);

/// Draws text from side to side of a rectangle, in the middle of its height. Laid out in a height
/// of at most `tallest` points; what is higher than the rectangle then is cut.
void drawTextCentredInRect(Canvas& canvas, const NSAttributedString& text, NSRect rect,
                           unsigned options, double tallest);

}  // namespace platform
