// What every start does first; what needs more is loaded.
#include <dlfcn.h>
#include <unistd.h>

#include <QtCore/QCoreApplication>
#include <QtDBus/QDBusConnection>
#include <cstdlib>
#include <iostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "desktop/files/module.h"
#include "desktop/program/card_module.h"
#include "desktop/program/command_line.h"
#include "desktop/program/ending.h"
#include "desktop/program/hand_on.h"
#include "desktop/program/headless.h"
#include "desktop/program/run.h"
#include "desktop/remote/early_bus.h"
#include "desktop/remote/verb.h"
#include "desktop/remote/verbs.h"

namespace {

/// Loads what both large modules need, so that its symbols are looked for in the C library first
/// and not in all of Qt: Debian's SQLite binds 1,600 of them at once, which took longer than
/// anything else in a verb.
void loadDatabase() {
#ifdef VIRELUNE_BINDS_DEEPLY
  dlopen("libsqlite3.so.0", RTLD_LAZY | RTLD_LOCAL | RTLD_DEEPBIND);
#endif
}

int runHeadless(const desktop::Verb* verb, int argc, char** argv) {
  loadDatabase();
  auto* run = reinterpret_cast<desktop::RunHeadless*>(
      desktop::functionOfModule(desktop::headlessModule, desktop::runHeadlessName));
  return run != nullptr ? run(verb, argc, argv) : EXIT_FAILURE;
}

/// The program begins again in this process, with what it was started with but for its size.
int startAnew(std::span<const char* const> arguments) {
  std::vector<std::string> kept;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string_view argument = arguments[i];
    if (argument == "--scale") {
      ++i;
    } else if (!argument.starts_with("--scale=")) {
      kept.emplace_back(argument);
    }
  }
  std::vector<char*> pointers;
  for (std::string& argument : kept) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  execv("/proc/self/exe", pointers.data());
  return EXIT_FAILURE;
}

int doVerb(const desktop::Result<desktop::Verb>& verb, int argc, char** argv) {
  if (!verb) {
    return desktop::refuse({desktop::badValueStatus, verb.problem().text + "; see --help"});
  }
  const QCoreApplication application(argc, argv);
  if (desktop::isForCard(*verb)) {
    const auto bus = QDBusConnection::sessionBus();
    const auto status = bus.isConnected() ? desktop::runVerbOnCard(*verb, bus) : std::nullopt;
    if (status) desktop::endAtOnce(*status);
  }
  return runHeadless(&*verb, argc, argv);
}

}  // namespace

int main(int argc, char** argv) {
  const std::span<const char* const> arguments(argv, static_cast<std::size_t>(argc));
  if (const auto verb = desktop::parseVerb(arguments.subspan(arguments.empty() ? 0 : 1))) {
    return doVerb(*verb, argc, argv);
  }
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
  if (const auto verb = commandLine->verb()) return doVerb(*verb, argc, argv);
  if (commandLine->service) return runHeadless(nullptr, argc, argv);
  if (commandLine->showsCard() && !commandLine->newCard) {
    const auto status = desktop::askEarly(argc, argv, [&commandLine](const QDBusConnection& bus) {
      return desktop::handOn(bus, *commandLine);
    });
    if (status) desktop::endAtOnce(*status);
  }
  loadDatabase();
  auto* run = reinterpret_cast<desktop::RunCard*>(
      desktop::functionOfModule(desktop::cardModule, desktop::runCardName));
  const int status = run != nullptr ? run(*commandLine, argc, argv) : EXIT_FAILURE;
  return status == desktop::restartStatus ? startAnew(arguments) : status;
}
