// A small window above the card, on what it says there.
#pragma once

#include <QtGui/QRasterWindow>

#include "desktop/graphics/backend.h"
#include "desktop/window/card_surface.h"
#include "platform/graphics/canvas.h"

namespace desktop {

/// Looks like the card. It is opaque, so that what it says can be read above anything.
class Sheet : public QRasterWindow {
 public:
  /// The card and the graphics must outlive it.
  Sheet(CardSurface& card, QtGraphics& graphics, Qt::WindowFlags flags);

 protected:
  /// Shows it with a corner there, or where it lies on the card's screen as a whole.
  void showAt(QPoint place, QSize size);
  void paintEvent(QPaintEvent* event) final;
  virtual void paintContent(platform::Canvas& canvas) = 0;

  CardSurface& card_;
  QtGraphics& graphics_;
};

/// The font and the colour of what is written there.
platform::Dictionary sheetTextAttributes();

}  // namespace desktop
