#include "desktop/window/card.h"

#include <QtGui/QPainterPath>
#include <cmath>

#include "desktop/graphics/qt_canvas.h"
#include "desktop/window/card_style.h"

namespace desktop {

namespace {

using platform::NSMakeRect;

/// What the widget asks for, else what its view has.
platform::NSSize sizeOf(const platform::NSViewController& controller) {
  const platform::NSSize preferred = controller.preferredContentSize();
  return preferred.height > 0 || !controller.view() ? preferred : controller.view()->frame().size;
}

/// One device pixel, inside the outline and above everything.
void paintBorder(QPainter& painter, platform::NSSize size, platform::Appearance appearance) {
  const double line = 1 / painter.device()->devicePixelRatioF();
  const QRectF middle =
      QRectF(0, 0, size.width, size.height).adjusted(line / 2, line / 2, -line / 2, -line / 2);
  const double radius = cardCornerRadius - line / 2;
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setBrush(Qt::NoBrush);
  painter.setPen(QPen(qtColor(cardBorderColor(appearance), appearance), line));
  painter.drawRoundedRect(middle, radius, radius);
}

}  // namespace

Card::Card(std::shared_ptr<platform::NSViewController> controller, const std::string& title)
    : controller_(std::move(controller)),
      window_(platform::make<platform::NSWindow>()),
      content_(platform::make<platform::NSView>()),
      header_(platform::make<CardHeader>(
          NSMakeRect(0, 0, sizeOf(*controller_).width, cardHeaderHeight), title)) {
  // What lies at the card's edge follows its corners.
  content_->setWantsLayer(true);
  content_->layer()->cornerRadius = cardCornerRadius;
  content_->layer()->masksToBounds = true;
  if (controller_->view()) content_->addSubview(controller_->view());
  content_->addSubview(header_);
  window_->setContentView(content_);
  if (const auto* providing = widget(); providing != nullptr && providing->widgetAllowsEditing()) {
    header_->setEditHandler([this] { setEditing(!editing_); });
  }
  controller_->setPreferredContentSizeHandler([this](platform::NSSize) { layOut(); });
  layOut();
}

Card::~Card() {
  controller_->setPreferredContentSizeHandler(nullptr);
  window_->setVisible(false);
  window_->setMarkHandler(nullptr);
}

platform::NCWidgetProviding* Card::widget() const {
  return dynamic_cast<platform::NCWidgetProviding*>(controller_.get());
}

void Card::layOut() {
  const double height = std::ceil(sizeOf(*controller_).height);
  content_->setFrame(NSMakeRect(0, 0, header_->frame().size.width, height + cardHeaderHeight));
  header_->setFrameOrigin({0, height});
  if (sizeHandler_) sizeHandler_(size());
}

platform::NSSize Card::size() const { return content_->frame().size; }

void Card::setSizeHandler(std::function<void(platform::NSSize)> handler) {
  sizeHandler_ = std::move(handler);
}

void Card::update() {
  if (auto* providing = widget()) {
    providing->widgetPerformUpdateWithCompletionHandler([](platform::NCUpdateResult) {});
  }
}

void Card::setEditing(bool editing) {
  auto* providing = widget();
  if (providing == nullptr || editing == editing_) return;
  editing_ = editing;
  header_->setEditing(editing);
  if (editing) {
    providing->widgetDidBeginEditing();
  } else {
    providing->widgetDidEndEditing();
  }
}

void Card::paintBackground(QPainter& painter, platform::Appearance appearance) const {
  const QRectF area(0, 0, size().width, size().height);
  const QColor color = qtColor(cardColor(appearance), appearance);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  if (!translucent_) {
    painter.fillRect(area, color.rgb());
  } else {
    painter.fillRect(area, Qt::transparent);
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath outline;
    outline.addRoundedRect(area, cardCornerRadius, cardCornerRadius);
    painter.fillPath(outline, color);
  }
  painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
}

QRect areaOfWholePixels(const QRectF& area, double scale) {
  constexpr int widest = 20;
  constexpr double exact = 1e-6;
  int grid = 1;  // points between two edges of points that are edges of pixels, too
  while (grid < widest && std::abs(grid * scale - std::round(grid * scale)) > exact) ++grid;
  const auto before = [grid](double edge) {
    return static_cast<int>(std::floor(edge / grid)) * grid;
  };
  const auto after = [grid](double edge) {
    return static_cast<int>(std::ceil(edge / grid)) * grid;
  };
  const QPoint corner(before(area.left()), before(area.top()));
  return {corner, QSize(after(area.right()) - corner.x(), after(area.bottom()) - corner.y())};
}

void Card::paint(QPainter& painter, const QRegion& region, platform::Appearance appearance) {
  const platform::NSSize whole = size();
  // One pass for each rectangle: what lies between two of them is left alone.
  for (const QRect& rect : region) {
    painter.save();
    painter.setClipRect(rect, Qt::IntersectClip);
    paintBackground(painter, appearance);
    {
      QtCanvas canvas(painter, whole.height, appearance);
      window_->display(canvas, NSMakeRect(rect.x(), whole.height - rect.y() - rect.height(),
                                          rect.width(), rect.height()));
    }
    paintBorder(painter, whole, appearance);
    painter.restore();
  }
}

QImage Card::picture(double scale, platform::Appearance appearance) {
  const QSizeF points(size().width, size().height);
  QImage picture((points * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
  if (picture.isNull()) return picture;
  picture.fill(Qt::transparent);
  picture.setDevicePixelRatio(scale);
  QPainter painter(&picture);
  paint(painter, QRegion(QRectF(QPointF(0, 0), points).toAlignedRect()), appearance);
  return picture;
}

}  // namespace desktop
