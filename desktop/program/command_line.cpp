#include "desktop/program/command_line.h"

#include <CLI/CLI.hpp>
#include <QtCore/QUrl>
#include <charconv>
#include <cstdlib>
#include <iterator>
#include <string_view>
#include <vector>

namespace desktop {

namespace {

bool isScale(std::string_view text) {
  double scale = 0;
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, scale);
  return error == std::errc() && rest == end && scale >= 1 && scale <= 4;
}

/// True for the host and port of an address, and nothing else of one.
bool isHost(std::string_view text) {
  const QUrl url(
      QStringLiteral("http://%1/").arg(QString::fromUtf8(text.data(), qsizetype(text.size()))),
      QUrl::StrictMode);
  return url.isValid() && !url.host().isEmpty() &&
         text.find_first_of("/?#@") == std::string_view::npos;
}

bool isSet(const char* variable) {
  const char* value = std::getenv(variable);
  return value != nullptr && *value != '\0';
}

std::string inQuotes(std::string_view text) { return '"' + std::string(text) + '"'; }

/// Has the program's options put what it reads into a command line, which must outlive it.
void addOptions(CLI::App& app, CommandLine& line) {
  using Test = bool (*)(std::string_view);
  const auto addValue = [&app](const char* name, const char* valueName, auto& value,
                               const char* help, const std::string& demand = {},
                               Test test = nullptr) {
    app.add_option(name, value, help)
        ->type_name(valueName)
        ->take_last()
        ->check([demand, test](const std::string& text) -> std::string {
          if (text.empty()) return "needs a value";
          return test == nullptr || test(text) ? "" : demand + ", not " + inQuotes(text);
        });
  };
  const auto addHost = [&addValue](const char* name, auto& value, const char* help) {
    addValue(name, "HOST[:PORT]", value, help, "takes a host or host:port", &isHost);
  };
  const auto addFlag = [&app](const char* name, bool& value, const char* help) {
    app.add_flag(name, value, help);
  };
  addValue("--player", "NAME", line.player, "follow this player (bus name or shown name)");
  addFlag("--list-players", line.listPlayers, "list the players on the session bus");
  addFlag("--demo", line.demo, "use the built-in demo player");
  addFlag("--wait-for-player", line.waitForPlayer,
          "do not use the demo player when no player is installed");
  addValue("--snapshot", "FILE", line.snapshot, "write the present state as PNG, then exit");
  addValue("--tour", "FOLDER", line.tour, "write one PNG for each state of the demo player");
  addValue("--export-ratings", "FILE", line.exportRatings,
           "write all ratings and love marks as JSON Lines");
  addFlag("--salvage", line.salvage, "export what can be read of a damaged store");
  addValue("--import-ratings", "FILE", line.importRatings,
           "take them over from such a file, or from a store's file");
  addFlag("--list-backups", line.listBackups, "list the days of which there are backups of them");
  addValue("--restore-ratings", "DATE", line.restoreRatings,
           "go back to the backup of that day, as 2026-01-31");
  addFlag("--no-library", line.noLibrary, "do not write ratings into the player's own library");
  addHost("--stream-host", line.streamHost, "ask this server for the live station's programme");
  addHost("--store-host", line.storeHost, "search the store on this server");
  addFlag("--on-top", line.onTop, "keep the card above other windows");
  addFlag("--new", line.newCard, "start another card when one runs already");
  addValue("--scale", "N", line.scale, "pixels per point, from 1 to 4",
           "takes a number from 1 to 4", &isScale);
  addFlag("--service", line.service, "answer other programs without a window, as the bus asks");
  app.set_help_flag();  // not the library's
  addFlag("--help", line.help, "show this help");
  addFlag("--version", line.version, "show the version");
}

/// What the library lets pass: a value for a flag, and an empty one after "=", for which it would
/// take the argument that follows. Empty when there is none.
std::string misplacedValue(const CLI::App& app, std::span<const char* const> arguments) {
  for (const std::string_view argument : arguments) {
    const std::string name(argument.substr(0, argument.find('=')));
    const CLI::Option* option = name.starts_with("--") ? app.get_option_no_throw(name) : nullptr;
    if (option == nullptr || name.size() == argument.size()) continue;
    if (option->get_type_name().empty()) return name + " takes no value";
    if (argument.size() == name.size() + 1) return name + " needs a value";
  }
  return {};
}

/// What cannot be had at once; empty when all of it can.
std::string conflict(const CommandLine& line) {
  if (line.player && line.demo) return "--player and --demo exclude each other";
  if (line.waitForPlayer && line.demo) return "--wait-for-player and --demo exclude each other";
  if (line.waitForPlayer && line.tour) return "--wait-for-player and --tour exclude each other";
  if (line.player && line.tour) return "--player and --tour exclude each other";
  if (line.snapshot && line.tour) return "--snapshot and --tour exclude each other";
  if (line.exportRatings && line.importRatings) {
    return "--export-ratings and --import-ratings exclude each other";
  }
  if (line.restoreRatings && (line.exportRatings || line.importRatings || line.listBackups)) {
    return "--restore-ratings goes alone";
  }
  if (line.salvage && !line.exportRatings) return "--salvage goes with --export-ratings";
  return {};
}

}  // namespace

bool CommandLine::takesTour() const {
  return tour || (!isSet("DISPLAY") && !isSet("WAYLAND_DISPLAY") && !snapshot);
}

std::optional<Result<Verb>> CommandLine::verb() const {
  if (listPlayers) return Verb{.name = "players"};
  if (listBackups) return Verb{.name = "backups"};
  if (exportRatings) return Verb{.name = "export", .value = *exportRatings, .salvage = salvage};
  if (importRatings) return Verb{.name = "import", .value = *importRatings};
  if (restoreRatings) return Verb{.name = "restore", .value = *restoreRatings};
  return std::nullopt;
}

bool CommandLine::showsCard() const { return !snapshot && !takesTour(); }

Result<CommandLine> parseCommandLine(std::span<const char* const> arguments) {
  CommandLine line;
  CLI::App app;
  addOptions(app, line);
  app.allow_extras();
  if (const auto problem = misplacedValue(app, arguments); !problem.empty()) {
    return Problem{problem};
  }
  try {
    app.parse(
        std::vector<std::string>(arguments.rbegin(), arguments.rend()));  // the first at the end
  } catch (const CLI::ParseError& error) {
    // "--option: what is wrong"
    const std::string_view text = error.what();
    const std::string name(text.substr(0, text.find(':')));
    const bool isWrong = error.get_exit_code() == static_cast<int>(CLI::ExitCodes::ValidationError);
    return Problem{name + (isWrong ? std::string(text.substr(name.size() + 1)) : " needs a value")};
  }
  if (const auto rest = app.remaining(); !rest.empty()) {
    const std::string name = rest.front().substr(0, rest.front().find('='));
    return Problem{(name.starts_with('-') ? "unknown option " : "unexpected ") + inQuotes(name)};
  }
  if (const auto problem = conflict(line); !problem.empty()) return Problem{problem};
  return line;
}

std::string helpText() {
  CommandLine line;
  CLI::App app;
  addOptions(app, line);
  std::string text =
      "Usage: virelune-widget [OPTION]...\n"
      "       virelune-widget [--player NAME] VERB [VALUE] [OPTION]...\n"
      "Shows what a music player plays, and controls it.\n\nVerbs:\n" +
      verbsHelp() + "\nOptions:\n";
  constexpr std::size_t column = 29;
  for (const CLI::Option* option : app.get_options()) {
    std::string entry = "  " + option->get_name();
    if (!option->get_type_name().empty()) entry += ' ' + option->get_type_name();
    entry.resize(std::max(column, entry.size() + 1), ' ');
    text += entry + option->get_description() + '\n';
  }
  return text + "\nWithout a display a tour of the demo player is written to ./virelune-tour.\n";
}

}  // namespace desktop
