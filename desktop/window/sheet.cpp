#include "desktop/window/sheet.h"

#include <QtGui/QScreen>
#include <algorithm>

#include "desktop/graphics/qt_canvas.h"
#include "desktop/window/card_style.h"
#include "desktop/window/compositing.h"
#include "desktop/window/placement.h"
#include "platform/foundation/attributed_string.h"

namespace desktop {

namespace {

constexpr double textSize = 13;
constexpr double cornerRadius = 8;

}  // namespace

Sheet::Sheet(CardSurface& card, QtGraphics& graphics, Qt::WindowFlags flags)
    : card_(card), graphics_(graphics) {
  QSurfaceFormat translucent = format();
  translucent.setAlphaBufferSize(8);
  setFormat(translucent);
  setFlags(flags | Qt::FramelessWindowHint);
  setTransientParent(&card);
}

void Sheet::showAt(QPoint place, QSize size) {
  QList<QRect> screens;
  if (card_.screen() != nullptr) screens.append(card_.screen()->availableGeometry());
  const QPoint offset = card_.unknownToQt();
  setGeometry(QRect(positionOnScreens(place + offset, size, screens) - offset, size));
  show();
  update();
}

void Sheet::paintEvent(QPaintEvent*) {
  const platform::Appearance appearance = card_.appearance();
  graphics_.setDisplay(devicePixelRatio(), appearance);
  QPainter painter(this);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.fillRect(QRect(QPoint(), size()), Qt::transparent);
  painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
  QtCanvas canvas(painter, height(), appearance);
  const double radius = isScreenComposited() ? cornerRadius : 0;
  const double line = 1 / devicePixelRatio();
  const auto whole = platform::NSMakeRect(0, 0, width(), height());
  const auto inside = platform::NSMakeRect(line, line, width() - 2 * line, height() - 2 * line);
  const platform::NSColor background = cardColor(appearance).colorWithAlphaComponent(1);
  canvas.fillRoundedRect(whole, radius, background);
  canvas.fillRoundedRect(whole, radius, cardBorderColor(appearance));
  canvas.fillRoundedRect(inside, std::max(0.0, radius - line), background);
  paintContent(canvas);
}

platform::Dictionary sheetTextAttributes() {
  return {
      {platform::NSFontAttributeName, platform::NSFont{textSize, platform::NSFontWeight::regular}},
      {platform::NSForegroundColorAttributeName, platform::NSColor::labelColor()}};
}

}  // namespace desktop
