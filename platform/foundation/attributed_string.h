// Texts with one set of attributes over their whole length.
#pragma once

#include <string>

#include "platform/foundation/value.h"

namespace platform {

// Keys of an attribute dictionary and the class of their values.
inline constexpr const char* NSFontAttributeName = "NSFont";              // NSFont
inline constexpr const char* NSForegroundColorAttributeName = "NSColor";  // NSColor
inline constexpr const char* NSParagraphStyleAttributeName =
    "NSParagraphStyle";  // NSParagraphStyle

struct NSAttributedString {
  std::string text;
  Dictionary attributes;
  bool operator==(const NSAttributedString&) const = default;
};

}  // namespace platform
