// The graphics backend: it makes, decodes and encodes images, and measures text.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "platform/foundation/attributed_string.h"
#include "platform/foundation/data.h"
#include "platform/foundation/geometry.h"
#include "platform/foundation/image.h"

namespace platform {

class Canvas;

enum class NSBitmapImageFileType { jpeg = 3, png = 4 };

/// The graphics backend.
class Graphics {
 public:
  virtual ~Graphics() = default;

  /// See imageWithData(). Any thread.
  virtual std::shared_ptr<NSImage> decode(const Data& data) = 0;
  /// The image of a file (PNG, JPEG, SVG); null when there is none. An SVG stays sharp at every
  /// size, and its "currentColor" follows the appearance.
  virtual std::shared_ptr<NSImage> imageAtPath(const std::string& path) = 0;
  /// Quality from 0.0 to 1.0, for JPEG only; empty bytes when it cannot be done.
  virtual Data encode(const NSImage& image, NSBitmapImageFileType type, double quality) = 0;
  /// The size of the text wrapped to a width; with NSStringDrawingTruncatesLastVisibleLine the
  /// height does not exceed size.height by more than one line.
  virtual NSSize measure(const NSAttributedString& text, NSSize size, unsigned options) = 0;
  /// Draws into a bitmap of the size (points) and answers it as an image at the display's scale.
  virtual std::shared_ptr<NSImage> render(NSSize size,
                                          const std::function<void(Canvas&)>& draw) = 0;
};

/// Decodes an image; null when the bytes are not one, are cut short, or are absurdly large.
/// Bytes that were decoded a moment ago answer the same image.
std::shared_ptr<NSImage> imageWithData(const Data& data);

/// The rectangle that the text takes, laid out within a size.
NSRect boundingRectWithSize_options_attributes(const std::string& text, NSSize size,
                                               unsigned options, const Dictionary& attributes);

}  // namespace platform
