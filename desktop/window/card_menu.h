// The card's context menu.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "desktop/window/sheet.h"
#include "platform/foundation/image.h"

namespace desktop {

/// One line of a menu.
struct MenuItem {
  std::string title;
  std::string key = {};  ///< how it is done by keyboard; empty for nothing
  bool isChecked = false;
  bool isEnabled = true;
  bool beginsGroup = false;  ///< a line above it
  std::function<void()> choose = {};
  std::vector<MenuItem> children = {};  ///< of a further level, in the place of choosing
  /// Asked when its level is shown; null for none.
  std::function<std::shared_ptr<platform::NSImage>()> icon = {};
};

/// Opens with the right button on the card, or by keyboard. It is chosen from by a click, by
/// letting go of the button that opened it, or with the arrow keys and Return; a press elsewhere,
/// or Escape, closes it. A further level takes the place of the one before.
class CardMenu final : public Sheet {
 public:
  using Source = std::function<std::vector<MenuItem>()>;
  /// The card and the graphics must outlive the menu. The source is asked whenever it opens.
  CardMenu(CardSurface& card, QtGraphics& graphics, Source source);
  ~CardMenu() override;

  /// Shows the items as they are now, beside a point of the screen.
  void open(QPoint point);
  /// Shows these in their place.
  void open(QPoint point, std::vector<MenuItem> items);
  const std::vector<MenuItem>& items() const { return levels_.back(); }
  /// Where an item lies, in points from the menu's upper left corner.
  QRectF itemPlace(std::size_t index) const;

 protected:
  bool event(QEvent* event) override;
  bool eventFilter(QObject* object, QEvent* event) override;
  void exposeEvent(QExposeEvent* event) override;
  void paintContent(platform::Canvas& canvas) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;

 private:
  QSize fittingSize() const;
  double textStart() const;
  void fit();
  void point(QPointF position);  ///< at an item, or at none
  void pointAt(std::optional<std::size_t> index);
  void movePointer(bool down);
  void choosePointed();
  void leaveLevel();
  void dismiss();
  void paintItem(platform::Canvas& canvas, std::size_t index) const;

  const Source source_;
  QPoint place_;
  std::vector<std::vector<MenuItem>> levels_{{}};  ///< never empty; the last one is shown
  std::vector<std::shared_ptr<platform::NSImage>>
      icons_;  ///< of that level; empty when it has none
  std::optional<std::size_t> pointedItem_;
};

}  // namespace desktop
