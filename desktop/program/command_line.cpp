#include "desktop/program/command_line.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>

#include "platform/foundation/url.h"

namespace desktop {

namespace {

constexpr double smallestScale = 1;
constexpr double largestScale = 4;

constexpr std::string_view hostValue = "HOST[:PORT]";

/// An option: a switch, or a text to follow it.
struct Option {
  std::string_view name;
  std::string_view valueName;
  std::string_view help;
  bool CommandLine::*flag = nullptr;
  std::optional<std::string> CommandLine::*text = nullptr;
};

constexpr std::array<Option, 14> options{{
    {"--player", "NAME", "follow this player (bus name or shown name)", nullptr,
     &CommandLine::player},
    {"--list-players", "", "list the players on the session bus", &CommandLine::listPlayers},
    {"--demo", "", "use the built-in demo player", &CommandLine::demo},
    {"--wait-for-player", "", "without a player wait for one instead of using the demo player",
     &CommandLine::waitForPlayer},
    {"--snapshot", "FILE", "write the present state as PNG, then exit", nullptr,
     &CommandLine::snapshot},
    {"--tour", "FOLDER", "write one PNG for each state of the demo player", nullptr,
     &CommandLine::tour},
    {"--export-ratings", "FILE", "write all ratings and love marks as JSON Lines", nullptr,
     &CommandLine::exportRatings},
    {"--import-ratings", "FILE", "take ratings and love marks over from such a file", nullptr,
     &CommandLine::importRatings},
    {"--stream-host", hostValue, "ask this server for the live station's programme", nullptr,
     &CommandLine::streamHost},
    {"--store-host", hostValue, "search the store on this server", nullptr,
     &CommandLine::storeHost},
    {"--on-top", "", "keep the card above other windows", &CommandLine::onTop},
    {"--scale", "N", "pixels per point, from 1 to 4"},
    {"--help", "", "show this help", &CommandLine::help},
    {"--version", "", "show the version", &CommandLine::version},
}};

std::optional<double> scaleFromText(std::string_view text) {
  double scale = 0;
  const char* end = text.data() + text.size();
  const auto [rest, error] = std::from_chars(text.data(), end, scale);
  const bool isNumber = error == std::errc() && rest == end;
  return isNumber && scale >= smallestScale && scale <= largestScale ? std::optional(scale)
                                                                     : std::nullopt;
}

/// True for the host and port of an address, and nothing else of one.
bool isHost(std::string_view text) {
  const auto url = platform::URL::fromText("http://" + std::string(text) + "/");
  return url && !url->host().empty() && text.find_first_of("/?#@") == std::string_view::npos;
}

std::string quoted(std::string_view text) { return '"' + std::string(text) + '"'; }

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
  return {};
}

}  // namespace

std::variant<CommandLine, CommandLineError> parseCommandLine(
    std::span<const char* const> arguments) {
  CommandLine line;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string_view argument = arguments[i];
    const std::size_t equals = argument.find('=');
    const std::string_view name = argument.substr(0, equals);
    const auto* const option = std::find_if(
        options.begin(), options.end(), [&](const Option& known) { return known.name == name; });
    if (option == options.end()) {
      return CommandLineError{(argument.starts_with('-') ? "unknown option " : "unexpected ") +
                              quoted(name)};
    }
    if (option->flag != nullptr) {
      if (equals != std::string_view::npos) {
        return CommandLineError{std::string(name) + " takes no value"};
      }
      line.*option->flag = true;
      continue;
    }
    const bool isAttached = equals != std::string_view::npos;
    if (!isAttached && i + 1 == arguments.size()) {
      return CommandLineError{std::string(name) + " needs a value"};
    }
    const std::string_view value =
        isAttached ? argument.substr(equals + 1) : std::string_view(arguments[++i]);
    if (value.empty()) return CommandLineError{std::string(name) + " needs a value"};
    if (option->valueName == hostValue && !isHost(value)) {
      return CommandLineError{std::string(name) + " takes a host or host:port, not " +
                              quoted(value)};
    }
    if (option->text != nullptr) {
      line.*option->text = std::string(value);
      continue;
    }
    line.scale = scaleFromText(value);
    if (!line.scale) {
      return CommandLineError{"--scale takes a number from 1 to 4, not " + quoted(value)};
    }
  }
  const std::string problem = conflict(line);
  if (!problem.empty()) return CommandLineError{problem};
  return line;
}

std::string helpText() {
  std::string text =
      "Usage: virelune-widget [OPTION]...\n"
      "Shows what a music player plays, and controls it.\n\n";
  constexpr std::size_t column = 29;
  for (const Option& option : options) {
    std::string entry = "  " + std::string(option.name);
    if (!option.valueName.empty()) entry += ' ' + std::string(option.valueName);
    entry.resize(std::max(column, entry.size() + 1), ' ');
    text += entry + std::string(option.help) + '\n';
  }
  return text + "\nWithout a display a tour of the demo player is written to ./virelune-tour.\n";
}

}  // namespace desktop
