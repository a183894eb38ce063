// Covers, drawn in code: gradients and a few shapes, as PNG bytes.
#pragma once

#include <utility>
#include <variant>

#include "platform/foundation/data.h"

namespace demo {

enum class CoverDesign { sunrise, rings, mountains, petals, stripes, waves };

/// The design as a PNG image of 300 × 300 pixels (RFC 2083).
platform::Data coverPNG(CoverDesign design);

/// A track's cover: any bytes, or a design that is drawn when its bytes are first wanted, once for
/// all the tracks that wear it. Main thread only.
class Cover {
 public:
  Cover(CoverDesign design) : content_(design) {}              // NOLINT: reads as a literal
  Cover(platform::Data bytes) : content_(std::move(bytes)) {}  // NOLINT

  /// The encoded image; the same buffer at every call.
  const platform::Data& bytes() const;

 private:
  std::variant<CoverDesign, platform::Data> content_;
};

}  // namespace demo
