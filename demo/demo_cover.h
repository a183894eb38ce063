// Covers, drawn in code: gradients and a few shapes, as PNG bytes.
#pragma once

#include <optional>

#include "platform/data.h"

namespace demo {

enum class CoverDesign { sunrise, rings, mountains, petals, stripes, waves };

/// The design as a PNG image of 300 × 300 pixels (RFC 2083).
platform::Data coverPNG(CoverDesign design);

/// A track's cover: any bytes, or a design that is drawn when its bytes are first wanted.
class Cover {
 public:
  Cover(CoverDesign design) : design_(design) {}  // NOLINT: reads as a literal
  Cover(platform::Data bytes) : design_(), bytes_(std::move(bytes)) {}  // NOLINT

  /// The encoded image; the same buffer at every call.
  const platform::Data& bytes() const;

 private:
  CoverDesign design_;
  mutable std::optional<platform::Data> bytes_;
};

}  // namespace demo
