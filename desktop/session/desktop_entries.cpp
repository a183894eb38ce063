#include "desktop/session/desktop_entries.h"

#include <unistd.h>

#include <QtCore/QProcess>
#include <QtCore/QStandardPaths>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <system_error>

#include "desktop/files/user_folders.h"
#include "platform/foundation/text.h"

namespace desktop {

namespace {

namespace fs = std::filesystem;

using Group = std::map<std::string, std::string, std::less<>>;

constexpr std::uintmax_t maximumFileLength = 1024 * 1024;

std::string_view trimmed(std::string_view text) {
  const auto first = text.find_first_not_of(" \t\r");
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

/// The parts between separators; empty parts are left out.
std::vector<std::string> split(std::string_view text, char separator) {
  std::vector<std::string> parts;
  while (!text.empty()) {
    const auto end = std::min(text.find(separator), text.size());
    if (end > 0) parts.emplace_back(trimmed(text.substr(0, end)));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return parts;
}

/// The groups of a key file; localised keys and comments are left out.
std::map<std::string, Group, std::less<>> parseKeyFile(std::string_view text) {
  std::map<std::string, Group, std::less<>> groups;
  Group* group = nullptr;
  for (const std::string& line : split(text, '\n')) {
    if (line.empty() || line.front() == '#') continue;
    if (line.front() == '[' && line.back() == ']') {
      group = &groups[line.substr(1, line.size() - 2)];
      continue;
    }
    const auto equals = line.find('=');
    if (group == nullptr || equals == std::string::npos) continue;
    const std::string_view all = line;
    group->emplace(trimmed(all.substr(0, equals)), trimmed(all.substr(equals + 1)));
  }
  return groups;
}

std::string readFile(const fs::path& path) {
  std::error_code error;
  if (!fs::is_regular_file(path, error) || fs::file_size(path, error) > maximumFileLength) {
    return {};
  }
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

/// The escapes of string values: \s \n \t \r and the backslash itself.
std::string unescaped(std::string_view text) {
  static const std::map<char, char> escapeSequences = {
      {'s', ' '}, {'n', '\n'}, {'t', '\t'}, {'r', '\r'}, {'\\', '\\'}};
  std::string result;
  for (std::size_t i = 0; i < text.size(); ++i) {
    const bool isEscape =
        text[i] == '\\' && i + 1 < text.size() && escapeSequences.contains(text[i + 1]);
    result += isEscape ? escapeSequences.at(text[++i]) : text[i];
  }
  return result;
}

std::string valueOf(const Group& group, std::string_view key) {
  const auto found = group.find(key);
  return found != group.end() ? unescaped(found->second) : std::string();
}

std::string environment(const char* name, const char* otherwise) {
  const char* value = std::getenv(name);
  return value != nullptr && *value != '\0' ? value : otherwise;
}

/// The folders of a kind in order of precedence, the user's own first; absolute ones only.
std::vector<fs::path> folders(const fs::path& own, const char* variable, const char* otherwise) {
  std::vector<fs::path> all;
  if (!own.empty()) all.push_back(own);
  for (const std::string& folder : split(environment(variable, otherwise), ':')) {
    if (fs::path(folder).is_absolute()) all.emplace_back(folder);
  }
  return all;
}

std::vector<fs::path> dataFolders() {
  return folders(userDataFolder(), "XDG_DATA_DIRS", "/usr/local/share:/usr/share");
}

/// Calls visit with every entry file and its identifier, by precedence, until it answers true.
template <class Visit>
void forEachEntryFile(Visit visit) {
  for (const fs::path& data : dataFolders()) {
    const fs::path applications = data / "applications";
    std::error_code error;
    fs::recursive_directory_iterator files(applications,
                                           fs::directory_options::skip_permission_denied, error);
    std::vector<fs::path> found;
    for (; !error && files != fs::recursive_directory_iterator(); files.increment(error)) {
      if (files->path().extension() == ".desktop") found.push_back(files->path());
    }
    std::sort(found.begin(), found.end());
    for (const fs::path& path : found) {
      std::string identifier = path.lexically_relative(applications).replace_extension().string();
      std::replace(identifier.begin(), identifier.end(), '/', '-');
      if (visit(path, identifier)) return;
    }
  }
}

std::optional<DesktopEntry> entryNamed(const std::string& identifier) {
  std::optional<DesktopEntry> entry;
  forEachEntryFile([&](const fs::path& path, const std::string& name) {
    if (!platform::caseInsensitiveEqual(name, identifier)) return false;
    entry = desktopEntryAtPath(path.string(), name);
    return true;  // a file of the user's that hides the system's ends the search too
  });
  return entry;
}

/// The entries that the lists of associations name for a type, the best first.
std::vector<std::string> associatedEntries(const std::string& type) {
  std::vector<fs::path> places = folders(userConfigFolder(), "XDG_CONFIG_DIRS", "/etc/xdg");
  for (const fs::path& data : dataFolders()) places.push_back(data / "applications");
  std::vector<std::string> lists;
  for (std::string desktop : split(environment("XDG_CURRENT_DESKTOP", ""), ':')) {
    std::transform(desktop.begin(), desktop.end(), desktop.begin(),
                   [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
    lists.push_back(desktop + "-mimeapps.list");
  }
  lists.emplace_back("mimeapps.list");

  std::vector<std::string> entries;
  for (const char* groupName : {"Default Applications", "Added Associations"}) {
    for (const fs::path& place : places) {
      for (const std::string& list : lists) {
        const auto groups = parseKeyFile(readFile(place / list));
        const auto group = groups.find(groupName);
        if (group == groups.end()) continue;
        for (const std::string& entry : split(valueOf(group->second, type), ';')) {
          entries.push_back(entry);
        }
      }
    }
  }
  return entries;
}

bool isProgram(const std::string& name) {
  return !QStandardPaths::findExecutable(QString::fromStdString(name)).isEmpty();
}

/// The words of an Exec value: separated by blanks, or in double quotes, where a backslash takes
/// the next character as it is. None when a quote is not closed.
std::optional<std::vector<std::string>> wordsOfExec(std::string_view exec) {
  std::vector<std::string> words;
  bool isInWord = false;
  bool isQuoted = false;
  for (std::size_t i = 0; i < exec.size(); ++i) {
    char c = exec[i];
    if (!isQuoted && (c == ' ' || c == '\t')) {
      isInWord = false;
      continue;
    }
    if (!isInWord) words.emplace_back();
    isInWord = true;
    if (c == '"') {
      isQuoted = !isQuoted;
      continue;
    }
    if (isQuoted && c == '\\' && i + 1 < exec.size()) c = exec[++i];
    words.back() += c;
  }
  if (isQuoted) return std::nullopt;
  return words;
}

/// A word with the field codes inside it replaced.
std::string expandedWord(std::string_view word, const DesktopEntry& entry,
                         const std::string& address) {
  std::string result;
  for (std::size_t i = 0; i < word.size(); ++i) {
    if (word[i] != '%' || i + 1 == word.size()) {
      result += word[i];
      continue;
    }
    switch (word[++i]) {
      case '%':
        result += '%';
        break;
      case 'f':
      case 'F':
      case 'u':
      case 'U':
        result += address;
        break;
      case 'c':
        result += entry.name;
        break;
      case 'k':
        result += entry.path;
        break;
      default:
        break;  // deprecated and unknown codes stand for nothing
    }
  }
  return result;
}

}  // namespace

std::optional<DesktopEntry> parseDesktopEntry(std::string_view text) {
  const auto groups = parseKeyFile(text);
  const auto found = groups.find("Desktop Entry");
  if (found == groups.end()) return std::nullopt;
  const Group& group = found->second;
  DesktopEntry entry{.identifier = {},
                     .path = {},
                     .name = valueOf(group, "Name"),
                     .exec = valueOf(group, "Exec"),
                     .tryExec = valueOf(group, "TryExec"),
                     .icon = valueOf(group, "Icon"),
                     .workingDirectory = valueOf(group, "Path"),
                     .needsTerminal = valueOf(group, "Terminal") == "true",
                     .types = split(valueOf(group, "MimeType"), ';'),
                     .vendorKeys = {}};
  for (const auto& [key, value] : group) {
    if (key.starts_with("X-")) entry.vendorKeys.emplace(key, unescaped(value));
  }
  const bool isApplication = valueOf(group, "Type") == "Application";
  if (!isApplication || entry.exec.empty() || valueOf(group, "Hidden") == "true") {
    return std::nullopt;
  }
  return entry;
}

std::optional<DesktopEntry> desktopEntryAtPath(const std::string& path,
                                               const std::string& identifier) {
  auto entry = parseDesktopEntry(readFile(path));
  if (!entry || (!entry->tryExec.empty() && !isProgram(entry->tryExec))) return std::nullopt;
  entry->path = path;
  entry->identifier = identifier;
  return entry;
}

std::optional<DesktopEntry> desktopEntryWithIdentifier(const std::string& identifier) {
  if (identifier.empty()) return std::nullopt;
  if (auto entry = entryNamed(identifier)) return entry;
  const std::string last = identifier.substr(identifier.rfind('.') + 1);
  return last != identifier && !last.empty() ? entryNamed(last) : std::nullopt;
}

std::optional<DesktopEntry> defaultApplicationForType(const std::string& type) {
  constexpr std::string_view suffix = ".desktop";
  for (std::string name : associatedEntries(type)) {
    if (name.ends_with(suffix)) name.resize(name.size() - suffix.size());
    if (auto entry = entryNamed(name)) return entry;
  }
  std::optional<DesktopEntry> entry;
  forEachEntryFile([&](const fs::path& path, const std::string& name) {
    entry = desktopEntryAtPath(path.string(), name);
    if (entry && std::find(entry->types.begin(), entry->types.end(), type) != entry->types.end()) {
      return true;
    }
    entry.reset();
    return false;
  });
  return entry;
}

std::vector<std::string> commandLine(const DesktopEntry& entry, const std::string& address) {
  const auto words = wordsOfExec(entry.exec);
  std::vector<std::string> arguments;
  for (const std::string& word : words.value_or(std::vector<std::string>())) {
    if (word == "%i") {
      if (!entry.icon.empty()) arguments.insert(arguments.end(), {"--icon", entry.icon});
      continue;
    }
    std::string expanded = expandedWord(word, entry, address);
    const bool stoodForNothing = expanded.empty() && !word.empty();
    if (!stoodForNothing) arguments.push_back(std::move(expanded));
  }
  return arguments;
}

bool startProgram(const std::vector<std::string>& arguments, const std::string& workingDirectory) {
  if (arguments.empty()) return false;
  QStringList list;
  for (auto argument = arguments.begin() + 1; argument != arguments.end(); ++argument) {
    list << QString::fromStdString(*argument);
  }
  return QProcess::startDetached(QString::fromStdString(arguments.front()), list,
                                 QString::fromStdString(workingDirectory));
}

bool launchDesktopEntry(const DesktopEntry& entry, const std::string& address) {
  std::vector<std::string> arguments = commandLine(entry, address);
  if (arguments.empty()) return false;
  if (entry.needsTerminal) arguments.insert(arguments.begin(), {"x-terminal-emulator", "-e"});
  return startProgram(arguments, entry.workingDirectory);
}

std::optional<std::string> iconPath(const DesktopEntry& entry) {
  std::error_code error;
  if (fs::path(entry.icon).is_absolute()) {
    return fs::is_regular_file(entry.icon, error) ? std::optional(entry.icon) : std::nullopt;
  }
  if (entry.icon.empty() || entry.icon.find('/') != std::string::npos) return std::nullopt;
  // Every application installs its icon into the theme that all others fall back on.
  constexpr std::array sizes = {"scalable", "512x512", "256x256", "192x192", "128x128",
                                "96x96",    "64x64",   "48x48",   "32x32"};
  for (const fs::path& data : dataFolders()) {
    std::vector<fs::path> places;
    for (const char* size : sizes) places.push_back(data / "icons/hicolor" / size / "apps");
    places.push_back(data / "pixmaps");
    for (const fs::path& place : places) {
      for (const char* extension : {".svg", ".png"}) {
        const fs::path path = place / (entry.icon + extension);
        if (fs::is_regular_file(path, error)) return path.string();
      }
    }
  }
  return std::nullopt;
}

}  // namespace desktop
