// What can be done with the player and with its current track.
#pragma once

#include "desktop/actions/action.h"
#include "desktop/player/controls.h"
#include "widget/widget_entry.h"

namespace desktop {

/// Adds them; both must outlive the actions. Ratings and love marks go through the widget's own
/// commands, so that love follows stars as it does on a click.
///
/// Their arguments: "seek" takes seconds and "volume" per cent, see amountFromText; "rate" and
/// "rate-album" a number of stars, see ratingFromText; "love" and "love-album" see switchFromText.
void addPlayerActions(Actions& actions, PlayerControls& player,
                      const virelune::WidgetEntry& widget);

}  // namespace desktop
