// Pictures of the card.
#pragma once

#include <filesystem>
#include <functional>
#include <ostream>

#include "demo/demo_player.h"
#include "desktop/result.h"
#include "desktop/window/card.h"

namespace desktop {

/// Lets the events run for a while, so that what is on its way to the card arrives.
void settle(int milliseconds);

/// Writes the card as it is now as a PNG file; false when it cannot be written.
bool writePicture(Card& card, const std::filesystem::path& file, double scale,
                  platform::Appearance appearance);

struct Tour {
  std::filesystem::path folder;  ///< made when it is missing
  double scale = 1;              ///< pixels per point
  platform::Appearance appearance = platform::Appearance::light;
  std::function<bool()> showsLiveProgramme;  ///< whether the card knows what is on air
};

/// Shows every state of the widget on the demo player: playing, paused, stopped, About while
/// editing, not running, the live station with its programme. Writes one picture of each and
/// prints the files' names.
Result<> takeTour(const Tour& tour, Card& card, demo::DemoPlayer& player, std::ostream& output);

}  // namespace desktop
