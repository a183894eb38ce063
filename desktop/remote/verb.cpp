#include "desktop/remote/verb.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace desktop {

namespace {

enum class Value { none, optional, needed };

struct KnownVerb {
  std::string_view name;
  std::string_view options;  // those that it takes, each after a blank
  Value value;
  std::string_view usage;
  std::string_view help;
};

constexpr std::array verbs{
    KnownVerb{"status", " --player --format --follow --position", Value::none,
              "[--format TEMPLATE|json|waybar] [--follow [--position]]", "say what plays"},
    KnownVerb{"rate", " --player --album", Value::optional, "[STARS|+|-] [--album]",
              "rate the track, 0 to 5 in halves; print its rating"},
    KnownVerb{"love", " --player --album", Value::optional, "[on|off|toggle] [--album]",
              "mark the track; print whether it is loved"},
    KnownVerb{"play-pause", " --player", Value::none, "", "play or pause"},
    KnownVerb{"play", " --player", Value::none, "", "play"},
    KnownVerb{"pause", " --player", Value::none, "", "pause"},
    KnownVerb{"stop", " --player", Value::none, "", "stop"},
    KnownVerb{"next", " --player", Value::none, "", "go to the next track"},
    KnownVerb{"previous", " --player", Value::none, "", "go to the previous track"},
    KnownVerb{"seek", " --player", Value::needed, "S|+S|-S|P%",
              "go to a position, in seconds or per cent"},
    KnownVerb{"volume", " --player", Value::optional, "[P|+P|-P]",
              "set the volume in per cent; print it"},
    KnownVerb{"mute", " --player", Value::optional, "[on|off|toggle]", "mute, or not"},
    KnownVerb{"raise", " --player", Value::none, "", "bring the player to the front"},
    KnownVerb{"players", "", Value::none, "", "list the players on the session bus"},
    KnownVerb{"follow", "", Value::needed, "NAME|any", "choose the player of the card that runs"},
    KnownVerb{"export", " --salvage", Value::optional, "[FILE] [--salvage]",
              "write all ratings and love marks as JSON Lines"},
    KnownVerb{"import", "", Value::needed, "FILE", "take them over from such a file or a player's"},
    KnownVerb{"backups", "", Value::none, "", "list the days of which there are backups"},
    KnownVerb{"restore", "", Value::needed, "DATE", "go back to the backup of that day"},
    KnownVerb{"list", " --loved --min --format", Value::none,
              "[--loved] [--min STARS] [--format json|m3u]", "list the tracks that have marks"},
};

const KnownVerb* find(std::string_view name) {
  const auto* found = std::find_if(verbs.begin(), verbs.end(),
                                   [name](const KnownVerb& verb) { return verb.name == name; });
  return found != verbs.end() ? found : nullptr;
}

bool takes(const KnownVerb& verb, std::string_view option) {
  const std::string whole(verb.options);
  return (whole + ' ').find(' ' + std::string(option) + ' ') != std::string::npos;
}

Problem problemOf(const KnownVerb& verb, const std::string& text) {
  return {std::string(verb.name) + " " + text};
}

/// "-5" and "-" are values.
bool isOption(std::string_view argument) { return argument.starts_with("--") && argument != "--"; }

Result<Verb> parse(const KnownVerb& known, std::span<const char* const> arguments) {
  Verb verb{.name = std::string(known.name)};
  bool hasName = false;
  bool hasValue = false;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string_view argument = arguments[i];
    if (!isOption(argument)) {
      if (!hasName) {
        hasName = true;
      } else if (hasValue || known.value == Value::none) {
        return problemOf(known, "does not take \"" + std::string(argument) + '"');
      } else {
        hasValue = true;
        verb.value = argument;
      }
      continue;
    }
    const std::string name(argument.substr(0, argument.find('=')));
    if (!takes(known, name)) return problemOf(known, "has no option \"" + name + '"');
    using Text = std::pair<std::string_view, std::optional<std::string>*>;
    const std::array texts{Text{"--player", &verb.player}, Text{"--format", &verb.format},
                           Text{"--min", &verb.minimum}};
    using Flag = std::pair<std::string_view, bool*>;
    const std::array flags{Flag{"--album", &verb.album}, Flag{"--follow", &verb.follow},
                           Flag{"--position", &verb.position}, Flag{"--loved", &verb.loved},
                           Flag{"--salvage", &verb.salvage}};
    const auto hasThisName = [&name](const auto& option) { return option.first == name; };
    if (const auto* flag = std::find_if(flags.begin(), flags.end(), hasThisName);
        flag != flags.end()) {
      if (name.size() != argument.size()) return Problem{name + " takes no value"};
      *flag->second = true;
      continue;
    }
    const auto* text = std::find_if(texts.begin(), texts.end(), hasThisName);
    std::string value;
    if (name.size() != argument.size()) {
      value = argument.substr(name.size() + 1);
    } else if (i + 1 < arguments.size()) {
      value = arguments[++i];
    }
    if (value.empty()) return Problem{name + " needs a value"};
    *text->second = value;
  }
  if (known.value == Value::needed && verb.value.empty()) {
    return problemOf(known, "needs " + std::string(known.usage));
  }
  if (hasValue && verb.value.empty()) return problemOf(known, "needs a value that is not empty");
  if (verb.position && !verb.follow) return Problem{"--position goes with --follow"};
  return verb;
}

}  // namespace

std::optional<Result<Verb>> parseVerb(std::span<const char* const> arguments) {
  // What stands before the verb may be the player's name.
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const std::string_view argument = arguments[i];
    if (argument == "--player") {
      ++i;
    } else if (!argument.starts_with('-')) {
      const KnownVerb* known = find(argument);
      return known != nullptr ? std::optional(parse(*known, arguments)) : std::nullopt;
    } else if (!argument.starts_with("--player=")) {
      return std::nullopt;
    }
  }
  return std::nullopt;
}

std::string verbsHelp() {
  std::string text;
  for (const KnownVerb& verb : verbs) {
    constexpr std::size_t column = 29;
    std::string entry = "  " + std::string(verb.name);
    if (!verb.usage.empty()) entry += ' ' + std::string(verb.usage);
    if (entry.size() >= column) {
      text += entry + '\n';
      entry.clear();
    }
    entry.resize(column, ' ');
    text += entry + std::string(verb.help) + '\n';
  }
  return text;
}

}  // namespace desktop
