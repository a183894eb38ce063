// All that shows a card, as a module: what needs no card does not pay for it.
#pragma once

#include "desktop/program/command_line.h"

namespace desktop {

/// Does what the command line asks for; answers the exit status, as runProgram. The module exports
/// it under this name.
using RunCard = int(const CommandLine& commandLine, int argc, char** argv);
inline constexpr const char* cardModule = "card";
inline constexpr const char* runCardName = "virelune_run_card";

}  // namespace desktop
