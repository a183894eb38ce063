#include "desktop/access/keyboard.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "desktop/window/localized.h"
#include "desktop/window/shortcuts.h"
#include "platform/view/event.h"

namespace desktop {

namespace {

using platform::NSAccessibilityRole;

constexpr int wheelStep = 120;  // eighths of a degree, one notch

/// How far a key moves a value, in its steps; 0 for a key that does not.
double stepsOf(const QKeyEvent& event, NSAccessibilityRole role) {
  constexpr double page = 6;  // half a minute
  switch (event.key()) {
    case Qt::Key_Left:
    case Qt::Key_Down:
      return -1;
    case Qt::Key_Right:
    case Qt::Key_Up:
      return 1;
    case Qt::Key_PageDown:
      return role == NSAccessibilityRole::position ? -page : 0;
    case Qt::Key_PageUp:
      return role == NSAccessibilityRole::position ? page : 0;
    default:
      return 0;
  }
}

}  // namespace

Keyboard::Keyboard(CardSurface& surface, Card& card, const Actions& actions, PlayerControls& player)
    : surface_(surface), card_(card), actions_(actions), player_(player) {
  surface_.setKeyHandler([this](const QKeyEvent& event) { return pressed(event); });
  surface_.setWheelHandler([this](const QWheelEvent& event) { turned(event); });
}

Keyboard::~Keyboard() {
  surface_.setKeyHandler(nullptr);
  surface_.setWheelHandler(nullptr);
}

ControlView Keyboard::focus() const {
  auto view = focus_.lock();
  return view && view->window() == &card_.window() && !view->isHidden() ? view : nullptr;
}

void Keyboard::setFocus(const ControlView& control) {
  focus_ = control;
  surface_.setFocusRing(control ? std::optional(control->convertRectToWindow(control->bounds()))
                                : std::nullopt);
  if (focusHandler_) focusHandler_(control);
}

bool Keyboard::moveFocus(bool forward) {
  auto controls = accessibleViews(card_);
  std::erase_if(controls, [](const ControlView& view) { return !isControl(*view); });
  if (controls.empty()) return false;
  if (!forward) std::reverse(controls.begin(), controls.end());
  const auto current = std::find(controls.begin(), controls.end(), focus());
  const bool isLast = current == controls.end() || current + 1 == controls.end();
  setFocus(isLast ? controls.front() : *(current + 1));
  return true;
}

bool Keyboard::usedByFocus(const QKeyEvent& event) {
  const auto control = focus();
  if (!control) {
    // The panel with it has gone.
    if (!focus_.expired()) setFocus(nullptr);
    return false;
  }
  const auto modifiers = event.modifiers();
  const auto role = control->accessibilityRole();
  switch (event.key()) {
    case Qt::Key_Escape:
      setFocus(nullptr);
      return true;
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return press(*control, modifiers);
    case Qt::Key_Home:
      return role == NSAccessibilityRole::position && setValue(*control, 0, modifiers);
    case Qt::Key_End:
      // Beyond the end the next track would begin.
      return role == NSAccessibilityRole::position && control->accessibilityValue() &&
             setValue(*control, control->accessibilityValue()->maximum - 1, modifiers);
    default:
      break;
  }
  const double steps = stepsOf(event, role);
  return steps != 0 && step(*control, steps, modifiers);
}

bool Keyboard::pressed(const QKeyEvent& event) {
  if (event.key() == Qt::Key_Tab || event.key() == Qt::Key_Backtab) {
    return moveFocus(event.key() == Qt::Key_Tab && !event.modifiers().testFlag(Qt::ShiftModifier));
  }
  if (usedByFocus(event)) return true;
  const Shortcut* shortcut = shortcutOf(event);
  if (shortcut == nullptr) return false;
  const std::string action = shortcut->action;
  const bool isDone = !actions_.perform(action, shortcut->argument);
  if (isDone && (action == "volume" || action == "mute")) showVolume();
  return true;
}

void Keyboard::turned(const QWheelEvent& event) {
  // Half a turn the other way does not count.
  const int turn = event.angleDelta().y();
  if ((turn < 0) != (turn_ < 0)) turn_ = 0;
  turn_ += turn;
  const int steps = turn_ / wheelStep;
  turn_ %= wheelStep;
  if (steps == 0 || (platform::NSEvent::pressedMouseButtons() & 1) != 0) return;
  const auto& content = card_.window().contentView();
  platform::NSView* view =
      content->hitTest({event.position().x(), card_.size().height - event.position().y()});
  const auto role = view != nullptr ? view->accessibilityRole() : NSAccessibilityRole::none;
  if (role == NSAccessibilityRole::position) step(*view, steps, event.modifiers());
  if (role == NSAccessibilityRole::position || role == NSAccessibilityRole::rating) return;
  constexpr int volumeStep = 5;  // per cent
  const int change = steps * volumeStep;
  const std::string argument = (change > 0 ? "+" : "") + std::to_string(change);
  if (!actions_.perform("volume", argument)) showVolume();
}

void Keyboard::showVolume() {
  const auto seen = player_.glance();
  if (!seen || !seen->volume) return;
  surface_.showNotice(localizedString("0004.0013") + "  " +
                      std::to_string(std::lround(*seen->volume * 100)) + " %");
}

}  // namespace desktop
