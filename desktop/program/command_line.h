// What the user asks of the program on its command line.
#pragma once

#include <optional>
#include <span>
#include <string>

#include "desktop/remote/verb.h"
#include "desktop/result.h"

namespace desktop {

struct CommandLine {
  std::optional<std::string> player;          ///< --player NAME
  std::optional<std::string> snapshot;        ///< --snapshot FILE
  std::optional<std::string> tour;            ///< --tour FOLDER
  std::optional<std::string> exportRatings;   ///< --export-ratings FILE
  std::optional<std::string> importRatings;   ///< --import-ratings FILE
  std::optional<std::string> restoreRatings;  ///< --restore-ratings DATE
  std::optional<std::string> streamHost;      ///< --stream-host HOST[:PORT]
  std::optional<std::string> storeHost;       ///< --store-host HOST[:PORT]
  std::optional<double> scale;                ///< --scale N, from 1 to 4
  bool salvage = false;
  bool listPlayers = false;
  bool listBackups = false;
  bool demo = false;
  bool waitForPlayer = false;
  bool onTop = false;
  bool newCard = false;
  bool noLibrary = false;
  bool help = false;
  bool version = false;
  bool service = false;  ///< --service

  /// True for a tour, be it only because there is no display.
  bool takesTour() const;
  /// What is a verb now, under the name that it had before.
  std::optional<Result<Verb>> verb() const;
  /// True when a card goes on the screen, or one that is there comes to the front.
  bool showsCard() const;
};

/// Reads the arguments that follow the program's name; values as "--option value" or
/// "--option=value".
Result<CommandLine> parseCommandLine(std::span<const char* const> arguments);

/// The text of --help.
std::string helpText();

}  // namespace desktop
