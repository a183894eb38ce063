// Images, as far as the widget handles them; the pixels belong to the graphics backend.
#pragma once

#include <memory>
#include <string>

#include "platform/data.h"
#include "platform/geometry.h"
#include "platform/object.h"

namespace platform {

/// A decoded image. Immutable, so it may be handed between threads.
class NSImage : public NSObject {
 public:
  virtual NSSize size() const = 0;  ///< points
};

enum class NSBitmapImageFileType { jpeg = 3, png = 4 };

inline constexpr const char* NSImageNameApplicationIcon = "NSApplicationIcon";

/// The named image of the main bundle; null when the bundle has none of that name.
std::shared_ptr<NSImage> imageNamed(const std::string& name);

/// Decodes an image; null when the bytes are not one, are cut short, or are absurdly large.
/// Bytes that were decoded a moment ago answer the same image.
std::shared_ptr<NSImage> imageWithData(const Data& data);

}  // namespace platform
