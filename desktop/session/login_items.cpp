#include "desktop/session/login_items.h"

#include <unistd.h>

#include <algorithm>
#include <charconv>
#include <tuple>

#include "desktop/files/user_folders.h"
#include "desktop/files/whole_file.h"
#include "desktop/session/desktop_entries.h"
#include "platform/application/system_events_dictionary.h"
#include "platform/platform.h"

namespace desktop {

namespace {

namespace fs = std::filesystem;
namespace system_events = platform::system_events;
using platform::ScriptingReply;
using platform::ScriptingRequest;
using platform::Value;

// Keys of our own in the entries made here.
constexpr const char* orderKey = "X-Virelune-LoginItem";
constexpr const char* hiddenKey = "X-Virelune-StartHidden";
// How GNOME's settings switch an entry off without removing it.
constexpr const char* enabledKey = "X-GNOME-Autostart-enabled";

constexpr std::size_t longestEntry = 1024 * 1024;  // bytes
constexpr int largestOrder = 1'000'000;

/// A value of the type string.
std::string escapedValue(std::string_view text) {
  std::string escaped;
  for (const char c : text) {
    switch (c) {
      case '\\':
        escaped += "\\\\";
        break;
      case '\n':
        escaped += "\\n";
        break;
      case '\t':
        escaped += "\\t";
        break;
      case '\r':
        escaped += "\\r";
        break;
      default:
        escaped += c;
    }
  }
  return escaped;
}

/// One argument of a command line, to be escaped as a value after that.
std::string quotedArgument(std::string_view argument) {
  std::string quoted = "\"";
  for (const char c : argument) {
    if (c == '"' || c == '`' || c == '$' || c == '\\') quoted += '\\';
    if (c == '%') quoted += '%';
    quoted += c;
  }
  return quoted + '"';
}

std::string execLine(const std::string& program, const std::string& argument) {
  const std::string tail = argument.empty() ? "" : ' ' + quotedArgument(argument);
  return "\nExec=" + escapedValue(quotedArgument(program) + tail) + "\n";
}

std::string entryText(const std::string& program, const std::string& execLine, bool hidden,
                      int order) {
  return "[Desktop Entry]\nType=Application\nName=" +
         escapedValue(fs::path(program).stem().native()) + execLine + hiddenKey + "=" +
         (hidden ? "true" : "false") + "\n" + orderKey + "=" + std::to_string(order) + "\n";
}

/// True when an entry was made here with this command, whatever has become of it since.
bool isMadeHere(std::string_view text, const std::string& execLine) {
  return text.find(execLine) != std::string_view::npos &&
         text.find(std::string("\n") + orderKey + "=") != std::string_view::npos;
}

/// A file name for a program: its name, with what is unusual in file names left out.
std::string fileStem(const std::string& program) {
  std::string stem = fs::path(program).stem().native();
  std::erase_if(stem, [](char c) {
    const bool isUsual = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') ||
                         (c >= '0' && c <= '9') || c == '-' || c == '_';
    return !isUsual;
  });
  return stem.empty() ? "login-item" : stem;
}

}  // namespace

LoginItems::LoginItems(Options options, platform::ScriptingTransport* others)
    : options_(std::move(options)), others_(others) {}

fs::path LoginItems::defaultFolder() {
  const fs::path folder = userConfigFolder();
  return folder.empty() ? folder : folder / "autostart";
}

std::optional<ScriptingReply> LoginItems::send(const ScriptingRequest& request) {
  if (request.bundleIdentifier != system_events::bundleIdentifier) {
    return others_ != nullptr ? others_->send(request) : std::nullopt;
  }
  if (request.path.empty() || request.path.front().code != system_events::loginItemClass)
    return std::nullopt;
  const auto index = request.path.front().index;
  if (!index) {
    if (request.path.size() != 1) return std::nullopt;
    if (request.kind == ScriptingRequest::Kind::count) return Value(items().size());
    if (request.kind != ScriptingRequest::Kind::make) return std::nullopt;
    return add(request.value) ? std::optional<ScriptingReply>(Value()) : std::nullopt;
  }
  const std::vector<Item> all = items();
  if (*index < 0 || *index >= static_cast<std::int64_t>(all.size())) return std::nullopt;
  return answer(request, all[static_cast<std::size_t>(*index)]);
}

std::optional<LoginItems::Item> LoginItems::itemInFile(const fs::path& file) const {
  const auto text = readWholeFile(file, longestEntry);
  const auto entry = text ? parseDesktopEntry(*text) : std::nullopt;
  if (!entry) return std::nullopt;
  const std::vector<std::string> arguments = commandLine(*entry);
  if (arguments.empty()) return std::nullopt;
  const auto vendorValue = [&entry](const char* key) {
    const auto found = entry->vendorKeys.find(key);
    return found != entry->vendorKeys.end() ? found->second : std::string();
  };
  const std::string order = vendorValue(orderKey);
  Item item{.file = file,
            .path = arguments.front(),
            .startsHidden = vendorValue(hiddenKey) == "true",
            .isEnabled = vendorValue(enabledKey) != "false"};
  std::from_chars(order.data(), order.data() + order.size(), item.order);
  item.order = std::clamp(item.order, 0, largestOrder);
  if (item.path == options_.executablePath) item.path = options_.bundlePath;
  return item;
}

std::vector<LoginItems::Item> LoginItems::items() const {
  std::vector<Item> all;
  std::error_code error;
  fs::directory_iterator files(options_.folder, error);
  for (; !error && files != fs::directory_iterator(); files.increment(error)) {
    // Reading a pipe would never end.
    std::error_code unknown;
    if (files->path().extension() != ".desktop" || !files->is_regular_file(unknown)) continue;
    auto item = itemInFile(files->path());
    if (item && item->isEnabled) all.push_back(std::move(*item));
  }
  std::sort(all.begin(), all.end(), [](const Item& a, const Item& b) {
    return std::tie(a.order, a.file) < std::tie(b.order, b.file);
  });
  return all;
}

std::optional<ScriptingReply> LoginItems::answer(const ScriptingRequest& request,
                                                 const Item& item) const {
  const bool isItemItself = request.path.size() == 1;
  switch (request.kind) {
    case ScriptingRequest::Kind::resolve:
      if (!isItemItself) return std::nullopt;
      return system_events::loginItemClass;
    case ScriptingRequest::Kind::remove:
      if (!isItemItself || ::unlink(item.file.c_str()) != 0) return std::nullopt;
      return Value();
    case ScriptingRequest::Kind::get:
      if (request.path.size() != 2) return std::nullopt;
      if (request.path.back().code == system_events::path) return Value(item.path);
      if (request.path.back().code == system_events::hidden) return Value(item.startsHidden);
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

bool LoginItems::add(const Value& properties) const {
  const auto* dictionary = properties.get<platform::Dictionary>();
  if (dictionary == nullptr || options_.folder.empty()) return false;
  const auto path = dictionary->find("path");
  const auto hidden = dictionary->find("hidden");
  const std::string* text = path != dictionary->end() ? path->second.get<std::string>() : nullptr;
  if (text == nullptr || text->empty() || text->find('\0') != std::string::npos) return false;
  const auto flag = hidden != dictionary->end() ? hidden->second.as<platform::Number>()
                                                : std::optional<platform::Number>();
  const std::vector<Item> all = items();
  const int order = std::max(all.empty() ? 0 : all.back().order, 0) + 1;
  const bool isThisProgram = *text == options_.bundlePath;
  const std::string& program = isThisProgram ? options_.executablePath : *text;
  const std::string exec = execLine(program, isThisProgram ? options_.argument : std::string());
  return makeFolder(options_.folder) &&
         writeWholeFile(fileForNewItem(program, exec),
                        entryText(program, exec, flag && flag->boolValue(), order));
}

fs::path LoginItems::fileForNewItem(const std::string& program, const std::string& execLine) const {
  const std::string stem = fileStem(program);
  for (int number = 1;; ++number) {
    const std::string suffix = number == 1 ? "" : "-" + std::to_string(number);
    fs::path file = options_.folder / (stem + suffix + ".desktop");
    std::error_code error;
    const auto type = fs::symlink_status(file, error).type();
    if (type == fs::file_type::not_found || type == fs::file_type::none) return file;
    if (type != fs::file_type::regular) continue;
    // An entry made here that the user has switched off since gives way.
    const auto text = readWholeFile(file, longestEntry);
    const auto item = itemInFile(file);
    if (text && isMadeHere(*text, execLine) && !(item && item->isEnabled)) return file;
  }
}

}  // namespace desktop
