#include "desktop/graphics/qt_image.h"

#include <QtSvg/QSvgRenderer>
#include <algorithm>
#include <cmath>

#include "desktop/graphics/image_decoder.h"

namespace desktop {

namespace {

constexpr std::size_t cachedPictures = 4;

/// The rectangle's place in device pixels, each edge on the nearest one.
QRect devicePixels(const QRectF& rect, double scale) {
  const QPoint topLeft(qRound(rect.left() * scale), qRound(rect.top() * scale));
  const QPoint end(qRound(rect.right() * scale), qRound(rect.bottom() * scale));
  return {topLeft, QSize(end.x() - topLeft.x(), end.y() - topLeft.y())};
}

QByteArray colorText(platform::NSColor color) {
  return QColor::fromRgbF(static_cast<float>(color.red()), static_cast<float>(color.green()),
                          static_cast<float>(color.blue()))
      .name()
      .toLatin1();
}

}  // namespace

const QImage& RasterCache::picture(QSize size, platform::Appearance appearance,
                                   const std::function<QImage()>& make) {
  const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
    return entry.size == size && entry.appearance == appearance;
  });
  if (found != entries_.end()) {
    std::rotate(found, found + 1, entries_.end());
    return entries_.back().picture;
  }
  if (entries_.size() == cachedPictures) entries_.erase(entries_.begin());
  entries_.push_back({size, appearance, make()});
  return entries_.back().picture;
}

void QtImage::paint(QPainter& painter, const QRectF& target,
                    platform::Appearance appearance) const {
  const double scale = painter.device()->devicePixelRatioF();
  const QRect place = devicePixels(target, scale);
  if (place.isEmpty()) return;
  const QImage& picture = cache_.picture(place.size(), appearance,
                                         [&] { return rasterised(place.size(), appearance); });
  const QRectF aligned(place.x() / scale, place.y() / scale, place.width() / scale,
                       place.height() / scale);
  painter.drawImage(aligned, picture);
}

BitmapImage::BitmapImage(QImage pixels, platform::NSSize size, platform::Data encoded)
    : pixels_(std::move(pixels)), size_(size), encoded_(std::move(encoded)) {}

QImage BitmapImage::pixels() const {
  if (encoded_.isEmpty()) return pixels_;
  const auto decoded = decodeImage(encoded_);
  return decoded ? decoded->pixels : QImage();
}

QImage BitmapImage::rasterised(QSize size, platform::Appearance) const {
  const auto format =
      pixels_.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32;
  return pixels_.scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation)
      .convertToFormat(format);
}

std::shared_ptr<DrawingImage> DrawingImage::fromSource(QByteArray source, InkColor ink) {
  const QSvgRenderer renderer(source);
  const QSize size = renderer.defaultSize();
  if (!renderer.isValid() || size.isEmpty()) return nullptr;
  return platform::make<DrawingImage>(
      std::move(source),
      platform::NSSize{static_cast<double>(size.width()), static_cast<double>(size.height())}, ink);
}

DrawingImage::DrawingImage(QByteArray source, platform::NSSize size, InkColor ink)
    : source_(std::move(source)), size_(size), ink_(ink) {}

QImage DrawingImage::pixels() const {
  // A drawing has no pixels of its own: twice its size is sharp wherever it may be shown.
  constexpr double scale = 2;
  const QSize size(qRound(size_.width * scale), qRound(size_.height * scale));
  return rasterised(size, platform::Appearance::light);
}

QImage DrawingImage::rasterised(QSize size, platform::Appearance appearance) const {
  QByteArray source = source_;
  source.replace("currentColor", colorText(ink_(appearance)));
  QSvgRenderer renderer(source);
  QImage picture(size, QImage::Format_ARGB32_Premultiplied);
  if (picture.isNull()) return picture;
  picture.fill(Qt::transparent);
  QPainter painter(&picture);
  renderer.render(&painter, QRectF(QPointF(0, 0), QSizeF(size)));
  return picture;
}

}  // namespace desktop
