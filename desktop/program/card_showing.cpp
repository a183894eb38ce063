#include "desktop/program/card_showing.h"

#include <utility>

#include "platform/application/player_dictionary.h"

namespace desktop {

CardShowing::CardShowing(CardSurface& window, const Settings& settings, PlayerControls& player)
    : window_(window),
      settings_(settings),
      player_(player),
      changes_(PlayerChanges::observe([this] { update(); })) {}

void CardShowing::update() {
  const auto seen = player_.glance();
  const bool nothingPlays = !seen || seen->state == platform::player::stateStopped ||
                            seen->state == platform::FourCharCode{};
  const bool isIdle = nothingPlays && settings_.hidesWhenIdle();
  if (std::exchange(isIdle_, isIdle) != isIdle) hiddenByHand_.reset();
  const bool hides = hiddenByHand_.value_or(isIdle);
  if (std::exchange(isHidden_, hides) == hides) return;
  if (hides) {
    window_.hide();
  } else {
    window_.open();
  }
}

void CardShowing::setHiddenByHand(bool hidden) {
  hiddenByHand_ = hidden;
  update();
}

}  // namespace desktop
