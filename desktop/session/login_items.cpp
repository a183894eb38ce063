#include "desktop/session/login_items.h"

#include <glib.h>

#include <algorithm>
#include <memory>
#include <tuple>

#include "desktop/files/user_folders.h"
#include "desktop/files/whole_file.h"
#include "platform/application/system_events_dictionary.h"
#include "platform/platform.h"

namespace desktop {

namespace {

namespace fs = std::filesystem;
namespace system_events = platform::system_events;
using platform::ScriptingReply;
using platform::ScriptingRequest;
using platform::Value;

constexpr const char* entryGroup = G_KEY_FILE_DESKTOP_GROUP;
// Keys of our own in the entries made here.
constexpr const char* orderKey = "X-Virelune-LoginItem";
// How GNOME's settings switch an entry off without removing it.
constexpr const char* enabledKey = "X-GNOME-Autostart-enabled";

constexpr int largestOrder = 1'000'000;

struct Release {
  void operator()(GKeyFile* file) const { g_key_file_unref(file); }
  void operator()(char* text) const { g_free(text); }
  void operator()(char** texts) const { g_strfreev(texts); }
};
using Entry = std::unique_ptr<GKeyFile, Release>;

/// The entry of a file; null when it is not one.
Entry entryInFile(const fs::path& file) {
  Entry entry(g_key_file_new());
  return g_key_file_load_from_file(entry.get(), file.c_str(), G_KEY_FILE_NONE, nullptr) != FALSE
             ? std::move(entry)
             : nullptr;
}

/// A text of an entry; empty when there is none.
std::string textOf(const Entry& entry, const char* key) {
  const std::unique_ptr<char, Release> text(
      g_key_file_get_string(entry.get(), entryGroup, key, nullptr));
  return text ? text.get() : "";
}

bool isTrue(const Entry& entry, const char* key) { return textOf(entry, key) == "true"; }

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

/// The program of a command line; empty when that is malformed.
std::string programOf(const std::string& exec) {
  char** words = nullptr;
  if (g_shell_parse_argv(exec.c_str(), nullptr, &words, nullptr) == FALSE) return {};
  const std::unique_ptr<char*, Release> owner(words);
  std::string program = words[0];
  for (auto at = program.find("%%"); at != std::string::npos; at = program.find("%%", at + 1)) {
    program.erase(at, 1);
  }
  return program;
}

std::string entryText(const std::string& program, const std::string& exec, int order) {
  const Entry entry(g_key_file_new());
  const auto set = [&entry](const char* key, const std::string& value) {
    g_key_file_set_string(entry.get(), entryGroup, key, value.c_str());
  };
  set("Type", "Application");
  set("Name", fs::path(program).stem().native());
  set("Exec", exec);
  set(orderKey, std::to_string(order));
  const std::unique_ptr<char, Release> text(g_key_file_to_data(entry.get(), nullptr, nullptr));
  return text.get();
}

/// True when an entry was made here with this command, whatever has become of it since.
bool isMadeHere(const Entry& entry, const std::string& exec) {
  return textOf(entry, "Exec") == exec && !textOf(entry, orderKey).empty();
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
  const Entry entry = entryInFile(file);
  if (!entry || textOf(entry, "Type") != "Application" || isTrue(entry, "Hidden")) {
    return std::nullopt;
  }
  Item item{.file = file,
            .path = programOf(textOf(entry, "Exec")),
            .isEnabled = textOf(entry, enabledKey) != "false",
            .order = std::clamp(g_key_file_get_integer(entry.get(), entryGroup, orderKey, nullptr),
                                0, largestOrder)};
  if (item.path.empty()) return std::nullopt;
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
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

bool LoginItems::add(const Value& properties) const {
  const auto* dictionary = properties.get<platform::Dictionary>();
  if (dictionary == nullptr || options_.folder.empty()) return false;
  const auto path = dictionary->find("path");
  const std::string* text = path != dictionary->end() ? path->second.get<std::string>() : nullptr;
  // Which takes no NUL either.
  const bool isText =
      text != nullptr &&
      g_utf8_validate(text->data(), static_cast<gssize>(text->size()), nullptr) != FALSE;
  if (!isText || text->empty()) return false;
  const std::vector<Item> all = items();
  const int order = std::max(all.empty() ? 0 : all.back().order, 0) + 1;
  const bool isThisProgram = *text == options_.bundlePath;
  const std::string& program = isThisProgram ? options_.executablePath : *text;
  const std::string exec = isThisProgram ? ownCommand() : quotedArgument(program);
  return makeFolder(options_.folder) &&
         writeWholeFile(fileForNewItem(program, exec), entryText(program, exec, order));
}

std::string LoginItems::ownCommand() const {
  const std::string command = quotedArgument(options_.executablePath);
  return options_.argument.empty() ? command : command + ' ' + quotedArgument(options_.argument);
}

void LoginItems::followMovedProgram() const {
  const fs::path program = options_.executablePath;
  for (const Item& item : items()) {
    std::error_code error;
    const bool isOurs = item.order > 0 && fs::path(item.path).filename() == program.filename();
    if (!isOurs || item.path == options_.bundlePath || fs::exists(item.path, error) || error) {
      continue;
    }
    writeWholeFile(item.file, entryText(program, ownCommand(), item.order));
  }
}

fs::path LoginItems::fileForNewItem(const std::string& program, const std::string& exec) const {
  const std::string stem = fileStem(program);
  for (int number = 1;; ++number) {
    const std::string suffix = number == 1 ? "" : "-" + std::to_string(number);
    fs::path file = options_.folder / (stem + suffix + ".desktop");
    std::error_code error;
    const auto type = fs::symlink_status(file, error).type();
    if (type == fs::file_type::not_found || type == fs::file_type::none) return file;
    if (type != fs::file_type::regular) continue;
    // An entry made here that the user has switched off since gives way.
    const Entry entry = entryInFile(file);
    const auto item = itemInFile(file);
    if (entry && isMadeHere(entry, exec) && !(item && item->isEnabled)) return file;
  }
}

}  // namespace desktop
