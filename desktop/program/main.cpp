// What every start does first; what needs more is loaded.
#include <cstdlib>
#include <iostream>
#include <span>

#include "desktop/files/module.h"
#include "desktop/program/card_module.h"
#include "desktop/program/command_line.h"
#include "desktop/program/hand_on.h"

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
  if (commandLine->showsCard() && !commandLine->newCard) {
    if (const auto status = desktop::handOnEarly(*commandLine, argc, argv)) return *status;
  }
  auto* run = reinterpret_cast<desktop::RunCard*>(
      desktop::functionOfModule(desktop::cardModule, desktop::runCardName));
  return run != nullptr ? run(*commandLine, argc, argv) : EXIT_FAILURE;
}
