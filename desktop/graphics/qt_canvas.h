// The canvas of views over Qt's painter.
#pragma once

#include <QtGui/QPainter>
#include <vector>

#include "platform/graphics/canvas.h"
#include "platform/graphics/graphics.h"

namespace desktop {

/// Paints views with a painter whose own coordinates start at the upper left, y downwards, and
/// are in points. Rectangles are converted one by one, so that text and images stay upright.
class QtCanvas final : public platform::Canvas {
 public:
  /// The height (points) is that of the whole area, where the views' y is at its largest.
  QtCanvas(QPainter& painter, double height, platform::Appearance appearance);
  ~QtCanvas() override;
  QtCanvas(const QtCanvas&) = delete;
  QtCanvas& operator=(const QtCanvas&) = delete;

  void save() override;
  void restore() override;
  void translate(double dx, double dy) override;
  void clip(platform::NSRect rect, double cornerRadius) override;
  void multiplyAlpha(double alpha) override;
  void fillRect(platform::NSRect rect, platform::NSColor color) override;
  void fillRoundedRect(platform::NSRect rect, double cornerRadius,
                       platform::NSColor color) override;
  void drawImage(const platform::NSImage& image, platform::NSRect rect, double fraction) override;
  void drawText(const platform::NSAttributedString& text, platform::NSRect rect,
                unsigned options) override;

 private:
  QRectF painterRect(platform::NSRect rect) const;
  QColor painterColor(platform::NSColor color) const;

  QPainter& painter_;
  const double height_;
  const platform::Appearance appearance_;
  platform::NSPoint origin_;
  std::vector<platform::NSPoint> savedOrigins_;
};

/// A fixed colour, or the one that is drawn under the appearance, as Qt has it.
QColor qtColor(platform::NSColor color, platform::Appearance appearance);

}  // namespace desktop
