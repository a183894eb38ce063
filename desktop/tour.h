// Pictures of the card.
#pragma once

#include <filesystem>
#include <ostream>

#include "demo/demo_player.h"
#include "desktop/card.h"

namespace desktop {

/// Lets the events run for a while, so that what is on its way to the card arrives.
void settle(int milliseconds);

/// Writes the card as it is now as a PNG file; false when it cannot be written.
bool writePicture(Card& card, const std::filesystem::path& file, double scale,
                  platform::Appearance appearance);

/// Shows every state of the widget on the demo player: playing, paused, stopped, About while
/// editing, not running. Writes one picture of each into a folder, made when it is missing, and
/// prints the files' names. Answers the path that could not be written; empty when all were.
std::filesystem::path takeTour(Card& card, demo::DemoPlayer& player,
                               const std::filesystem::path& folder, double scale,
                               platform::Appearance appearance, std::ostream& output);

}  // namespace desktop
