#include <cstdlib>
#include <iostream>
#include <span>

#include "desktop/program/command_line.h"
#include "desktop/program/run.h"
#include "desktop/ratings/exchange.h"
#include "widget/widget_entry.h"

int main(int argc, char** argv) {
  const std::span<const char* const> arguments(argv, static_cast<std::size_t>(argc));
  const auto parsed =
      desktop::parseCommandLine(arguments.empty() ? arguments : arguments.subspan(1));
  if (const auto* error = std::get_if<desktop::CommandLineError>(&parsed)) {
    std::cerr << "virelune-widget: " << error->message << "; see --help\n";
    return EXIT_FAILURE;
  }
  const auto& commandLine = std::get<desktop::CommandLine>(parsed);
  if (commandLine.help) {
    std::cout << desktop::helpText();
    return EXIT_SUCCESS;
  }
  if (commandLine.version) {
    std::cout << "virelune-widget " << VIRELUNE_VERSION << '\n';
    return EXIT_SUCCESS;
  }
  if (commandLine.exportRatings || commandLine.importRatings) {
    desktop::RatingsStore ratings(desktop::RatingsStore::defaultFile());
    return commandLine.exportRatings ? exportRatings(ratings, *commandLine.exportRatings)
                                     : importRatings(ratings, *commandLine.importRatings);
  }
  return desktop::runProgram(commandLine, argc, argv, virelune::widgetEntry());
}
