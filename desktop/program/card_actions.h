// What can be done with the card itself, and the menu that shows all that can be done.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "desktop/actions/action.h"
#include "desktop/files/settings.h"
#include "desktop/program/card_showing.h"
#include "desktop/program/player_source.h"
#include "desktop/program/tray_program.h"
#include "desktop/session/file_chooser.h"
#include "desktop/window/card_menu.h"
#include "desktop/window/card_surface.h"
#include "widget/widget_entry.h"

namespace desktop {

/// What the card's actions are about; all of it must outlive them.
struct CardParts {
  CardSurface& surface;
  Card& card;
  PlayerSource& player;
  Settings& settings;
  const virelune::WidgetEntry& widget;
  FileChooser& files;
  std::function<void()> restart;  ///< begins the program anew, as a new size asks for
  std::function<void()> showKeys;
  CardShowing& showing;
  TrayProgram& tray;
};

/// Adds them: "follow" (a player's name, "any", "demo"), "size" (per cent), "love-rule" ("off" or a
/// number of stars), and without argument "about", "hide-when-idle", "launch-at-login", "on-top",
/// "write-library", "export-ratings", "import-ratings", "status-icon", "show", "menu", "keys",
/// "close" and "quit".
void addCardActions(Actions& actions, const CardParts& parts);

/// The context menu, as things are now.
std::vector<MenuItem> menuItems(const Actions& actions, const CardParts& parts);

/// The keys with what they do.
std::vector<MenuItem> keyItems(const Actions& actions);

}  // namespace desktop
