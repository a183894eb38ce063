// Whether the card is shown.
#pragma once

#include <memory>
#include <optional>

#include "desktop/files/settings.h"
#include "desktop/player/changes.h"
#include "desktop/player/controls.h"
#include "desktop/window/card_surface.h"

namespace desktop {

/// The card hides while nothing plays, where the user wants it so. The user may put it away or
/// bring it back by hand, until it hides or comes back for that reason.
class CardShowing {
 public:
  /// All of them must outlive it.
  CardShowing(CardSurface& window, const Settings& settings, PlayerControls& player);

  void update();
  bool isShown() const { return !isHidden_; }
  void setHiddenByHand(bool hidden);

 private:
  CardSurface& window_;
  const Settings& settings_;
  PlayerControls& player_;
  bool isIdle_ = false;               ///< nothing plays, and the user wants it hidden then
  std::optional<bool> hiddenByHand_;  ///< none: as it comes
  bool isHidden_ = false;
  const std::shared_ptr<PlayerChanges> changes_;
};

}  // namespace desktop
