// The whole of what the card shows a part of.
#pragma once

#include <QtCore/QTimer>
#include <optional>
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
  void pointAt(std::optional<std::string> text, QPoint place);
  void appear();

  std::optional<std::string> text_;  ///< of the view below the pointer
  QPoint place_;                     ///< of the pointer on the screen
  QTimer rest_;
};

}  // namespace desktop
