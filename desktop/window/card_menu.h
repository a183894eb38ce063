// The card's context menu.
#pragma once

#include <QtGui/QRasterWindow>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "desktop/window/card_surface.h"
#include "widget/widget_entry.h"

namespace desktop {

/// Opens with the right button on the card: launch at login, keep on top, close. It is chosen from
/// by a click, or by letting go of the button that opened it; a press elsewhere closes it.
class CardMenu final : public QRasterWindow {
 public:
  struct Item {
    std::string title;
    bool isChecked = false;
    std::function<void()> choose;
  };

  /// The card, the graphics and the widget must outlive the menu.
  CardMenu(CardSurface& card, QtGraphics& graphics, const virelune::WidgetEntry& widget);
  ~CardMenu() override;

  /// Shows the items as they are now, beside a point of the screen.
  void open(QPoint point);
  const std::vector<Item>& items() const { return items_; }
  /// Where an item lies, in points from the menu's upper left corner.
  QRectF itemPlace(std::size_t index) const;

 protected:
  bool event(QEvent* event) override;
  void exposeEvent(QExposeEvent* event) override;
  void paintEvent(QPaintEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  std::vector<Item> currentItems();
  QSize fittingSize() const;
  void point(QPointF position);  ///< at an item, or at none
  void dismiss();
  void paintItem(platform::Canvas& canvas, std::size_t index) const;

  CardSurface& card_;
  QtGraphics& graphics_;
  const virelune::WidgetEntry& widget_;
  std::vector<Item> items_;
  std::optional<std::size_t> pointedItem_;
};

}  // namespace desktop
