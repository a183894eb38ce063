// Drawing into a bitmap and looking at what came out.
#pragma once

#include <QtGui/QImage>

#include "desktop/graphics/qt_canvas.h"

namespace tests {

/// What is drawn on a canvas of this size (points), on nothing.
inline QImage drawn(QSize size, const std::function<void(platform::Canvas&)>& draw,
                    platform::Appearance appearance = platform::Appearance::light,
                    double scale = 1) {
  QImage picture(size * scale, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::transparent);
  picture.setDevicePixelRatio(scale);
  {
    QPainter painter(&picture);
    desktop::QtCanvas canvas(painter, size.height(), appearance);
    draw(canvas);
  }
  picture.setDevicePixelRatio(1);
  return picture;
}

/// The rectangle of the pixels that anything was drawn on; empty when there are none.
inline QRect ink(const QImage& picture) {
  QRect inked;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      if (qAlpha(picture.pixel(x, y)) > 0) inked |= QRect(x, y, 1, 1);
    }
  }
  return inked;
}

}  // namespace tests
