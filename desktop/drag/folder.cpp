#include "desktop/drag/folder.h"

#include <sys/stat.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>

namespace desktop {

namespace {

constexpr const char* folderName = "virelune-widget-drops";
constexpr auto keptFor = std::chrono::hours(1);

}  // namespace

DragFolder::DragFolder() {
  const char* runtime = std::getenv("XDG_RUNTIME_DIR");
  if (runtime != nullptr && *runtime == '/') path_ = std::filesystem::path(runtime) / folderName;
  removeOldFiles();
}

std::optional<std::filesystem::path> DragFolder::path() const {
  if (path_.empty()) return std::nullopt;
  ::mkdir(path_.c_str(), S_IRWXU);  // whether it is there now is looked at next
  struct stat found {};
  if (::lstat(path_.c_str(), &found) != 0) return std::nullopt;
  const bool isPrivate = S_ISDIR(found.st_mode) && found.st_uid == ::geteuid() &&
                         (found.st_mode & (S_IRWXG | S_IRWXO)) == 0;
  return isPrivate ? std::optional(path_) : std::nullopt;
}

void DragFolder::removeOldFiles() const {
  if (path_.empty()) return;
  const auto oldest = std::filesystem::file_time_type::clock::now() - keptFor;
  std::error_code error;
  for (std::filesystem::directory_iterator entry(path_, error), end; !error && entry != end;
       entry.increment(error)) {
    std::error_code gone;  // another instance may be clearing up, too
    const auto written = entry->last_write_time(gone);
    if (!gone && written < oldest) std::filesystem::remove(entry->path(), gone);
  }
}

}  // namespace desktop
