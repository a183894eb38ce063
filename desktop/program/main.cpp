#include <cstdlib>
#include <iostream>
#include <span>

#include "desktop/program/command_line.h"
#include "desktop/program/run.h"
#include "widget/widget_entry.h"

int main(int argc, char** argv) {
  const std::span<const char* const> arguments(argv, static_cast<std::size_t>(argc));
  const auto commandLine =
      desktop::parseCommandLine(arguments.empty() ? arguments : arguments.subspan(1));
  if (!commandLine) {
    std::cerr << "virelune-widget: " << commandLine.problem().text << "; see --help\n";
    return EXIT_FAILURE;
  }
  if (commandLine->help) {
    std::cout << desktop::helpText();
    return EXIT_SUCCESS;
  }
  if (commandLine->version) {
    std::cout << "virelune-widget " << VIRELUNE_VERSION << '\n';
    return EXIT_SUCCESS;
  }
  return desktop::runProgram(*commandLine, argc, argv, virelune::widgetEntry());
}
