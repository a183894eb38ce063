// Decoding the bytes of foreign images within bounds.
#pragma once

#include <QtGui/QImage>
#include <optional>

#include "platform/foundation/data.h"

namespace desktop {

/// The pixels of an image, perhaps reduced, and the size it has in full.
struct DecodedImage {
  QImage pixels;
  QSize fullSize;
};

/// Decodes a PNG (RFC 2083), JPEG (ITU-T T.81), GIF (its first picture) or WebP. Pictures with a
/// side above maximumSide (pixels; none: no limit) come reduced to it. None when the bytes are
/// not a whole picture, or one of more than 20 million pixels; of 400 million where the decoder
/// reduces as it goes, a row after the other. Any thread.
std::optional<DecodedImage> decodeImage(const platform::Data& data,
                                        std::optional<int> maximumSide = std::nullopt);

}  // namespace desktop
