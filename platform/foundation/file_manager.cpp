#include "platform/foundation/file_manager.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>

namespace fs = std::filesystem;

namespace platform {

namespace {

struct FileCloser {
  void operator()(std::FILE* file) const { std::fclose(file); }  // NOLINT: owned here
};
using File = std::unique_ptr<std::FILE, FileCloser>;

/// Makes a hidden file beside the one that it is to replace, with its permissions, or those that
/// new files get. Null, with errno telling why, when that cannot be done.
File makeFileBeside(const fs::path& path, std::string& temporary) {
  constexpr int attempts = 100;
  const std::string stem = (path.parent_path() / ("." + path.filename().string())).string() + "." +
                           std::to_string(::getpid()) + ".";
  for (int attempt = 0; attempt < attempts; ++attempt) {
    temporary = stem + std::to_string(attempt);
    File file(std::fopen(temporary.c_str(), "wxe"));
    if (!file && errno == EEXIST) continue;
    struct stat old {};
    if (file && ::stat(path.c_str(), &old) == 0) {
      ::fchmod(::fileno(file.get()), old.st_mode & 0777U);
    }
    return file;
  }
  return nullptr;
}

}  // namespace

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

std::optional<Data> dataWithContentsOfFile(const std::string& path, std::uintmax_t largest) {
  std::error_code error;
  if (!fs::is_regular_file(path, error)) return std::nullopt;
  const std::uintmax_t size = fs::file_size(path, error);
  if (error || size > largest) return std::nullopt;

  std::ifstream file(path, std::ios::binary);
  if (!file) return std::nullopt;
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(size));
  file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  bytes.resize(static_cast<std::size_t>(file.gcount()));
  return Data(std::move(bytes));
}

bool writeToFileAtomically(const std::string& path, std::string_view contents) {
  return writeToFileAtomically(path, [&](const FileSink& sink) { return sink(contents); });
}

bool writeToFileAtomically(const std::string& path,
                           const std::function<bool(const FileSink& sink)>& fill) {
  std::string temporary;
  File file = makeFileBeside(path, temporary);
  if (!file) return false;
  const bool isWritten =
      fill([&file](std::string_view piece) {
        return std::fwrite(piece.data(), 1, piece.size(), file.get()) == piece.size();
      }) &&
      std::fflush(file.get()) == 0 && ::fsync(::fileno(file.get())) == 0 &&
      ::rename(temporary.c_str(), path.c_str()) == 0;
  if (isWritten) return true;
  const int error = errno;
  ::unlink(temporary.c_str());
  errno = error;
  return false;
}

}  // namespace platform
