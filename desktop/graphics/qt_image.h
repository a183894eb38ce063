// The images of the desktop: bitmaps and drawings that stay sharp at every size.
#pragma once

#include <QtCore/QByteArray>
#include <QtGui/QImage>
#include <QtGui/QPainter>
#include <functional>
#include <memory>
#include <vector>

#include "platform/foundation/color.h"
#include "platform/foundation/data.h"
#include "platform/foundation/image.h"

namespace desktop {

/// Pictures made for the sizes they were last painted at, so that a repaint only copies. Painting
/// is the main thread's alone.
class RasterCache {
 public:
  /// The picture of a size in device pixels and an appearance; made when it is not there.
  const QImage& picture(QSize size, platform::Appearance appearance,
                        const std::function<QImage()>& make);

 private:
  struct Entry {
    QSize size;
    platform::Appearance appearance;
    QImage picture;
  };
  std::vector<Entry> entries_;  // the last used one at the end
};

/// An image that Qt can paint.
class QtImage : public platform::NSImage {
 public:
  /// Paints the whole image scaled into a rectangle, on whole device pixels. Main thread only.
  void paint(QPainter& painter, const QRectF& target, platform::Appearance appearance) const;

  /// Everything the image shows, in full size; null when it cannot be had.
  virtual QImage pixels() const = 0;

 protected:
  /// Makes the picture for a size in device pixels.
  virtual QImage rasterised(QSize size, platform::Appearance appearance) const = 0;

 private:
  mutable RasterCache cache_;
};

/// A picture of pixels.
class BitmapImage final : public QtImage {
 public:
  /// The pixels may be a reduced copy when the encoded bytes hold the picture in full.
  BitmapImage(QImage pixels, platform::NSSize size, platform::Data encoded = {});

  platform::NSSize size() const override { return size_; }
  QImage pixels() const override;

 protected:
  QImage rasterised(QSize size, platform::Appearance appearance) const override;

 private:
  const QImage pixels_;
  const platform::NSSize size_;
  const platform::Data encoded_;
};

/// What drawings are inked with under an appearance.
using InkColor = platform::NSColor (*)(platform::Appearance);

/// A drawing in SVG. Where its source says "currentColor" it takes the ink.
class DrawingImage final : public QtImage {
 public:
  /// Null when the source is not a drawing.
  static std::shared_ptr<DrawingImage> fromSource(QByteArray source, InkColor ink);
  DrawingImage(QByteArray source, platform::NSSize size, InkColor ink);

  platform::NSSize size() const override { return size_; }
  QImage pixels() const override;

 protected:
  QImage rasterised(QSize size, platform::Appearance appearance) const override;

 private:
  const QByteArray source_;
  const platform::NSSize size_;
  const InkColor ink_;
};

}  // namespace desktop
