#include "desktop/graphics/backend.h"

#include <QtCore/QBuffer>
#include <QtCore/QFile>
#include <QtGui/QImageWriter>
#include <algorithm>
#include <cmath>

#include "desktop/graphics/image_decoder.h"
#include "desktop/graphics/qt_canvas.h"
#include "desktop/graphics/qt_image.h"
#include "desktop/graphics/text_block.h"
#include "platform/graphics/canvas.h"

namespace desktop {

namespace {

// A cover is shown small, on the largest card of a display of double density too; in full it is
// wanted only when it is dragged out.
constexpr int keptSide = 256;
constexpr std::size_t keptDecodings = 8;
constexpr std::size_t keptBytes = 8 * 1024 * 1024;  // of the encoded pictures
constexpr qint64 maximumFileSize = 8 * 1024 * 1024;

platform::Data toData(const QByteArray& bytes) {
  return platform::Data(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
}

std::shared_ptr<platform::NSImage> decodedBitmap(const platform::Data& data) {
  auto decoded = decodeImage(data, keptSide);
  if (!decoded) return nullptr;
  const platform::NSSize size{static_cast<double>(decoded->fullSize.width()),
                              static_cast<double>(decoded->fullSize.height())};
  const bool isReduced = decoded->pixels.size() != decoded->fullSize;
  return platform::make<BitmapImage>(std::move(decoded->pixels), size,
                                     isReduced ? data : platform::Data());
}

QImage onWhite(const QImage& picture) {
  if (!picture.hasAlphaChannel()) return picture;
  QImage opaque(picture.size(), QImage::Format_RGB32);
  if (opaque.isNull()) return opaque;
  opaque.fill(Qt::white);
  QPainter painter(&opaque);
  painter.drawImage(0, 0, picture);
  return opaque;
}

}  // namespace

std::shared_ptr<platform::NSImage> QtGraphics::decode(const platform::Data& data) {
  if (data.isEmpty()) return nullptr;
  const auto isSame = [&](const Decoded& known) { return known.data.isIdenticalTo(data); };
  {
    const std::lock_guard lock(decodedMutex_);
    const auto known = std::find_if(decoded_.begin(), decoded_.end(), isSame);
    if (known != decoded_.end()) return known->image;
  }
  auto image = decodedBitmap(data);
  const std::lock_guard lock(decodedMutex_);
  const auto known = std::find_if(decoded_.begin(), decoded_.end(), isSame);
  if (known != decoded_.end()) return known->image;  // another thread was faster
  decoded_.push_back({data, image});
  std::size_t bytes = 0;
  for (const Decoded& one : decoded_) bytes += one.data.length();
  while (decoded_.size() > keptDecodings || (decoded_.size() > 1 && bytes > keptBytes)) {
    bytes -= decoded_.front().data.length();
    decoded_.erase(decoded_.begin());
  }
  return image;
}

std::shared_ptr<platform::NSImage> QtGraphics::imageAtPath(const std::string& path) {
  QFile file(QString::fromStdString(path));
  if (!file.open(QIODevice::ReadOnly) || file.size() > maximumFileSize) return nullptr;
  QByteArray bytes = file.readAll();
  if (path.ends_with(".svg") || path.ends_with(".svgz")) {
    return DrawingImage::fromSource(std::move(bytes), ink_);
  }
  return decodedBitmap(toData(bytes));
}

platform::Data QtGraphics::encode(const platform::NSImage& image,
                                  platform::NSBitmapImageFileType type, double quality) {
  const auto* picture = dynamic_cast<const QtImage*>(&image);
  if (picture == nullptr) return {};
  const bool isJPEG = type == platform::NSBitmapImageFileType::jpeg;
  const QImage pixels = isJPEG ? onWhite(picture->pixels()) : picture->pixels();
  if (pixels.isNull()) return {};
  QBuffer buffer;
  buffer.open(QIODevice::WriteOnly);
  QImageWriter writer(&buffer, isJPEG ? "jpeg" : "png");
  if (isJPEG) writer.setQuality(qRound(std::clamp(quality, 0.0, 1.0) * 100));
  return writer.write(pixels) ? toData(buffer.data()) : platform::Data();
}

platform::NSSize QtGraphics::measure(const platform::NSAttributedString& text,
                                     platform::NSSize size, unsigned) {
  return TextBlock(text, size.width).measure(size.height);
}

std::shared_ptr<platform::NSImage> QtGraphics::render(
    platform::NSSize size, const std::function<void(platform::Canvas&)>& draw) {
  const QSize pixels(static_cast<int>(std::ceil(size.width * scale_)),
                     static_cast<int>(std::ceil(size.height * scale_)));
  QImage picture(pixels, QImage::Format_ARGB32_Premultiplied);
  if (picture.isNull()) return nullptr;
  picture.fill(Qt::transparent);
  picture.setDevicePixelRatio(scale_);
  {
    QPainter painter(&picture);
    QtCanvas canvas(painter, size.height, appearance_);
    draw(canvas);
  }
  picture.setDevicePixelRatio(1);
  return platform::make<BitmapImage>(std::move(picture), size);
}

void QtGraphics::setDisplay(double scale, platform::Appearance appearance) {
  scale_ = scale;
  appearance_ = appearance;
}

}  // namespace desktop
