#include "platform/file_manager.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>

namespace fs = std::filesystem;

namespace platform {

std::optional<std::string> userDataFolder() {
  const char* data = std::getenv("XDG_DATA_HOME");
  if (data != nullptr && *data == '/') return data;
  const char* home = std::getenv("HOME");
  if (home == nullptr || *home != '/') return std::nullopt;
  return std::string(home) + "/.local/share";
}

std::optional<URL> containerURLForSecurityApplicationGroupIdentifier(
    const std::string& identifier) {
  const auto data = userDataFolder();
  if (identifier.empty() || !data) return std::nullopt;
  const auto folder = URL::fileURLWithPath(*data);
  return folder ? URLByAppendingPathComponent(*folder, identifier, true) : std::nullopt;
}

std::optional<std::vector<URL>> contentsOfDirectoryAtURL(const URL& url, unsigned options) {
  const auto path = url.filePath();
  if (!path) return std::nullopt;
  const bool skipsHidden = (options & NSDirectoryEnumerationSkipsHiddenFiles) != 0;
  std::vector<URL> contents;
  std::error_code error;
  for (fs::directory_iterator entry(*path, error), end; !error && entry != end;
       entry.increment(error)) {
    const std::string name = entry->path().filename().string();
    if (skipsHidden && name.starts_with('.')) continue;
    std::error_code ignored;  // an entry that vanished meanwhile is listed as a file
    const bool isDirectory = entry->is_directory(ignored);
    if (auto item = URLByAppendingPathComponent(url, name, isDirectory)) {
      contents.push_back(std::move(*item));
    }
  }
  if (error) return std::nullopt;
  std::sort(contents.begin(), contents.end(),
            [](const URL& a, const URL& b) { return a.absoluteString() < b.absoluteString(); });
  return contents;
}

bool checkResourceIsReachable(const URL& url) {
  const auto path = url.filePath();
  std::error_code error;
  return path && fs::exists(*path, error);
}

bool createDirectoryAtURL(const URL& url) {
  const auto path = url.filePath();
  if (!path) return false;
  std::error_code error;
  fs::create_directories(*path, error);
  return !error && fs::is_directory(*path, error);
}

}  // namespace platform
