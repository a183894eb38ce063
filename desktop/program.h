// The program, from its command line to its exit status.
#pragma once

#include "desktop/command_line.h"
#include "platform/extension.h"

namespace desktop {

/// Does what the command line asks for with the widget among the classes. Answers the exit
/// status: 0, or 1 after one line on standard error that says why not.
int runProgram(const CommandLine& commandLine, int argc, char** argv,
               const platform::PrincipalClasses& classes);

}  // namespace desktop
