// The whole of what the card shows a part of.
#pragma once

#include <QtCore/QTimer>
#include <string>

#include "desktop/window/sheet.h"

namespace desktop {

/// Appears below a pointer that rests on a view with a tool tip, and goes when the pointer leaves
/// the view or when something is pressed or turned.
class ToolTip final : public Sheet {
 public:
  ToolTip(CardSurface& card, QtGraphics& graphics);
  ~ToolTip() override;

 protected:
  bool eventFilter(QObject* object, QEvent* event) override;
  void paintContent(platform::Canvas& canvas) override;

 private:
  void pointerMoved(const QMouseEvent& event);
  void leave();
  void appear();

  const void* view_ = nullptr;  ///< below the pointer, to tell it from others; null: there is none
  QPointF pointer_;             ///< in the card
  QPoint place_;                ///< of the pointer on the screen
  QTimer rest_;
  std::string text_;
};

}  // namespace desktop
