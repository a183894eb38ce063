#include "desktop/graphics/image_decoder.h"

#include <QtCore/QBuffer>
#include <QtGui/QImageReader>
#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

namespace desktop {

namespace {

constexpr qint64 maximumPixels = 20'000'000;
constexpr qint64 maximumReducedPixels = 400'000'000;

using Bytes = std::span<const std::uint8_t>;

/// Where the entropy-coded bytes that begin at a position end: at the next marker that is not
/// part of them (T.81, B.1.1.5), or at the end of the bytes.
std::size_t endOfScan(Bytes bytes, std::size_t position) {
  for (; position + 1 < bytes.size(); ++position) {
    if (bytes[position] != 0xFF) continue;
    const std::uint8_t code = bytes[position + 1];
    const bool stuffed = code == 0x00 || code == 0xFF;
    const bool restart = code >= 0xD0 && code <= 0xD7;
    if (!stuffed && !restart) return position;
  }
  return bytes.size();
}

/// The decoder paints what a cut-off JPEG lacks in grey and calls it a success; only the markers
/// tell that the end is missing.
bool isWholeJPEG(Bytes bytes, bool& isSequential) {
  constexpr std::uint8_t baselineFrame = 0xC0;
  constexpr std::uint8_t extendedFrame = 0xC1;
  constexpr std::uint8_t startOfScan = 0xDA;
  constexpr std::uint8_t endOfImage = 0xD9;
  bool scanned = false;
  std::size_t position = 2;
  while (position + 1 < bytes.size()) {
    if (bytes[position] != 0xFF || bytes[position + 1] == 0xFF) {
      ++position;
      continue;
    }
    const std::uint8_t code = bytes[position + 1];
    if (code == endOfImage) return scanned;
    position += 2;
    if (code <= 0x01 || (code >= 0xD0 && code <= 0xD8)) continue;  // these carry no length
    if (position + 2 > bytes.size()) return false;
    position += std::size_t{bytes[position]} << 8 | bytes[position + 1];
    if (code == baselineFrame || code == extendedFrame) isSequential = true;
    if (code == startOfScan) {
      scanned = true;
      position = endOfScan(bytes, position);
    }
  }
  return false;
}

/// Whether the chunks lead up to the last one (RFC 2083, 3.2). The decoder would notice as well,
/// but not without words of its own.
bool isWholePNG(Bytes bytes) {
  constexpr std::size_t overhead = 12;  // length, type and checksum
  constexpr std::array<std::uint8_t, 4> lastType{'I', 'E', 'N', 'D'};
  std::size_t position = 8;
  while (position + overhead <= bytes.size()) {
    if (std::ranges::equal(bytes.subspan(position + 4, 4), lastType)) return true;
    std::size_t length = 0;
    for (std::size_t i = 0; i < 4; ++i) length = length << 8 | bytes[position + i];
    position += overhead + length;
  }
  return false;
}

/// Tells besides whether the decoder holds no more of it at a time than a row.
bool isWhole(const QByteArray& format, Bytes bytes, bool& isSequential) {
  if (format == "jpeg") return isWholeJPEG(bytes, isSequential);
  if (format == "png") return isWholePNG(bytes);
  if (format == "gif") return bytes.back() == 0x3B;  // GIF89a, trailer
  return format == "webp";                           // its reader notices by itself
}

}  // namespace

std::optional<DecodedImage> decodeImage(const platform::Data& data,
                                        std::optional<int> maximumSide) {
  if (data.isEmpty()) return std::nullopt;
  const std::string_view view = data.view();
  QByteArray bytes = QByteArray::fromRawData(view.data(), static_cast<qsizetype>(view.size()));
  QBuffer buffer(&bytes);
  if (!buffer.open(QIODevice::ReadOnly)) return std::nullopt;
  QImageReader reader(&buffer);
  reader.setAutoTransform(true);
  bool isSequential = false;
  if (!isWhole(reader.format(), data.bytes(), isSequential)) return std::nullopt;

  const QSize size = reader.size();
  const bool reduced = maximumSide && std::max(size.width(), size.height()) > *maximumSide;
  const qint64 most = reduced && isSequential ? maximumReducedPixels : maximumPixels;
  if (size.isEmpty() || qint64{size.width()} * size.height() > most) return std::nullopt;
  if (reduced) {
    reader.setScaledSize(
        size.scaled(*maximumSide, *maximumSide, Qt::KeepAspectRatio).expandedTo({1, 1}));
  }
  const bool turned = reader.transformation().testFlag(QImageIOHandler::TransformationRotate90);
  QImage pixels;
  if (!reader.read(&pixels) || pixels.isNull()) return std::nullopt;
  return DecodedImage{std::move(pixels), turned ? size.transposed() : size};
}

}  // namespace desktop
