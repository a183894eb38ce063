// The card for assistive technology.
#pragma once

#include <QtGui/QAccessible>
#include <QtGui/QAccessibleObject>
#include <map>
#include <memory>
#include <string>
#include <vector>

#include "desktop/access/controls.h"
#include "desktop/access/keyboard.h"
#include "desktop/player/changes.h"
#include "desktop/window/card_surface.h"

namespace desktop {

/// Answers for the card and each of its controls: role, name, value, place, actions. Nothing is
/// made before somebody asks. A panel that takes another's place, a new text, and a mark are told
/// once; time that passes is not told at all. All that it is given must outlive it.
class AccessibleCard {
 public:
  AccessibleCard(CardSurface& surface, Card& card, Keyboard& keyboard);
  ~AccessibleCard();
  AccessibleCard(const AccessibleCard&) = delete;
  AccessibleCard& operator=(const AccessibleCard&) = delete;

 private:
  class Root;
  class Part;
  /// What was told of a part last.
  struct Told {
    std::string name;
    double value = 0;
  };

  Part* partOf(const ControlView& view);
  std::vector<ControlView> views() const { return accessibleViews(card_); }
  void tellChanges();
  void tellFocus(const ControlView& control);
  void forget();

  CardSurface& surface_;
  Card& card_;
  Keyboard& keyboard_;
  Root* root_ = nullptr;  // Qt's registry owns it and the parts until they are taken out of it
  std::map<const platform::NSView*, Part*> parts_;
  std::vector<const platform::NSView*> toldViews_;
  std::map<const platform::NSView*, Told> told_;
  const std::shared_ptr<PlayerChanges> changes_;
};

}  // namespace desktop
