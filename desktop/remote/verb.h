// What a script asks of the program: "virelune-widget VERB …".
#pragma once

#include <optional>
#include <span>
#include <string>

#include "desktop/result.h"

namespace desktop {

struct Verb {
  std::string name = {};                             ///< "rate"
  std::string value = {};                            ///< "4.5"; empty without one
  std::optional<std::string> player = std::nullopt;  ///< --player NAME
  std::optional<std::string> format = std::nullopt;  ///< --format TEMPLATE, "json", "waybar", "m3u"
  std::optional<std::string> minimum = std::nullopt;  ///< --min STARS
  bool album = false;                                 ///< --album
  bool follow = false;                                ///< --follow
  bool position = false;                              ///< --position
  bool loved = false;                                 ///< --loved
  bool salvage = false;                               ///< --salvage
};

/// Reads the arguments that follow the program's name, when one of them is a verb; none when none
/// is, and the command line is one without.
std::optional<Result<Verb>> parseVerb(std::span<const char* const> arguments);

/// The verbs' part of --help.
std::string verbsHelp();

}  // namespace desktop
