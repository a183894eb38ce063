// The program, from its command line to its exit status.
#pragma once

#include "desktop/program/command_line.h"
#include "widget/widget_entry.h"

namespace desktop {

/// What runProgram answers when the program is to begin anew.
inline constexpr int restartStatus = 64;

/// Does what the command line asks for with this widget. Answers the exit status: 0, or 1 after one
/// line on standard error that says why not.
int runProgram(const CommandLine& commandLine, int argc, char** argv,
               const virelune::WidgetEntry& widget);

}  // namespace desktop
