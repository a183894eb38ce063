#include "desktop/graphics/qt_canvas.h"

#include <QtGui/QPainterPath>

#include "desktop/graphics/qt_image.h"
#include "desktop/graphics/text_block.h"
#include "platform/graphics/canvas.h"

namespace desktop {

namespace {

QPainterPath roundedPath(const QRectF& rect, double cornerRadius) {
  QPainterPath path;
  path.addRoundedRect(rect, cornerRadius, cornerRadius);
  return path;
}

}  // namespace

QColor qtColor(platform::NSColor color, platform::Appearance appearance) {
  const platform::NSColor fixed = color.resolved(appearance);
  return QColor::fromRgbF(static_cast<float>(fixed.red()), static_cast<float>(fixed.green()),
                          static_cast<float>(fixed.blue()), static_cast<float>(fixed.alpha()));
}

QtCanvas::QtCanvas(QPainter& painter, double height, platform::Appearance appearance)
    : painter_(painter), height_(height), appearance_(appearance) {
  painter_.save();
  painter_.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
}

QtCanvas::~QtCanvas() { painter_.restore(); }

void QtCanvas::save() {
  painter_.save();
  savedOrigins_.push_back(origin_);
}

void QtCanvas::restore() {
  if (savedOrigins_.empty()) return;
  painter_.restore();
  origin_ = savedOrigins_.back();
  savedOrigins_.pop_back();
}

void QtCanvas::translate(double dx, double dy) {
  origin_.x += dx;
  origin_.y += dy;
}

void QtCanvas::clip(platform::NSRect rect, double cornerRadius) {
  if (cornerRadius > 0) {
    painter_.setClipPath(roundedPath(painterRect(rect), cornerRadius), Qt::IntersectClip);
  } else {
    painter_.setClipRect(painterRect(rect), Qt::IntersectClip);
  }
}

void QtCanvas::multiplyAlpha(double alpha) {
  painter_.setOpacity(painter_.opacity() * platform::visibleAlpha(alpha, appearance_));
}

void QtCanvas::fillRect(platform::NSRect rect, platform::NSColor color) {
  if (rect.isEmpty() || color.alpha() <= 0) return;
  painter_.fillRect(painterRect(rect), painterColor(color));
}

void QtCanvas::fillRoundedRect(platform::NSRect rect, double cornerRadius,
                               platform::NSColor color) {
  if (rect.isEmpty() || color.alpha() <= 0) return;
  painter_.fillPath(roundedPath(painterRect(rect), cornerRadius), painterColor(color));
}

void QtCanvas::drawImage(const platform::NSImage& image, platform::NSRect rect, double fraction) {
  const auto* picture = dynamic_cast<const QtImage*>(&image);
  if (picture == nullptr || rect.isEmpty()) return;
  const double opacity = painter_.opacity();
  painter_.setOpacity(opacity * platform::visibleAlpha(fraction, appearance_));
  picture->paint(painter_, painterRect(rect), appearance_);
  painter_.setOpacity(opacity);
}

void QtCanvas::drawText(const platform::NSAttributedString& text, platform::NSRect rect,
                        unsigned options) {
  const TextBlock block(text, rect.size.width);
  const auto entry = text.attributes.find(platform::NSForegroundColorAttributeName);
  const auto color =
      entry != text.attributes.end() ? entry->second.as<platform::NSColor>() : std::nullopt;
  block.draw(painter_, painterRect(rect).topLeft(), rect.size.height,
             (options & platform::NSStringDrawingTruncatesLastVisibleLine) != 0,
             painterColor(color.value_or(platform::NSColor::labelColor())));
}

QRectF QtCanvas::painterRect(platform::NSRect rect) const {
  return {origin_.x + rect.minX(), height_ - (origin_.y + rect.maxY()), rect.size.width,
          rect.size.height};
}

QColor QtCanvas::painterColor(platform::NSColor color) const { return qtColor(color, appearance_); }

}  // namespace desktop
