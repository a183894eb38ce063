// The card by keyboard and by wheel.
#pragma once

#include <QtGui/QKeyEvent>
#include <QtGui/QWheelEvent>
#include <functional>
#include <memory>
#include <optional>

#include "desktop/access/controls.h"
#include "desktop/actions/action.h"
#include "desktop/player/controls.h"
#include "desktop/window/card_surface.h"

namespace desktop {

/// Tab walks the controls, and a ring is drawn around the one that has the keyboard; it uses what
/// keys it can, and all others do actions. The wheel seeks over the bar, does nothing over the
/// stars and changes the volume elsewhere. All that it is given must outlive it.
class Keyboard {
 public:
  Keyboard(CardSurface& surface, Card& card, const Actions& actions, PlayerControls& player);
  ~Keyboard();
  Keyboard(const Keyboard&) = delete;
  Keyboard& operator=(const Keyboard&) = delete;

  /// The control that has the keyboard; null for none.
  ControlView focus() const;
  void setFocus(const ControlView& control);
  void setFocusHandler(std::function<void(const ControlView&)> handler) {
    focusHandler_ = std::move(handler);
  }

 private:
  bool pressed(const QKeyEvent& event);
  bool usedByFocus(const QKeyEvent& event);
  bool moveFocus(bool forward);
  void turned(const QWheelEvent& event);
  void showVolume();

  CardSurface& surface_;
  Card& card_;
  const Actions& actions_;
  PlayerControls& player_;
  std::weak_ptr<platform::NSView> focus_;
  std::function<void(const ControlView&)> focusHandler_;
  int turn_ = 0;  ///< of the wheel since the last step, in eighths of a degree
};

}  // namespace desktop
