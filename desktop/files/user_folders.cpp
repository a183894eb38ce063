#include "desktop/files/user_folders.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>

#include "desktop/files/file_descriptor.h"
#include "platform/foundation/file_manager.h"

namespace desktop {

namespace {

std::filesystem::path folderFromEnvironment(const char* variable, const char* belowHome) {
  if (const char* folder = std::getenv(variable); folder != nullptr && *folder == '/') {
    return folder;
  }
  const char* home = std::getenv("HOME");
  if (home == nullptr || *home != '/') return {};
  return std::filesystem::path(home) / belowHome;
}

}  // namespace

std::filesystem::path userDataFolder() {
  return platform::userDataFolder().value_or(std::string());
}

std::filesystem::path userConfigFolder() {
  return folderFromEnvironment("XDG_CONFIG_HOME", ".config");
}

std::filesystem::path userStateFolder() {
  return folderFromEnvironment("XDG_STATE_HOME", ".local/state");
}

bool makeFolder(const std::filesystem::path& folder) {
  struct stat found {};
  if (::stat(folder.c_str(), &found) == 0) {
    if (S_ISDIR(found.st_mode)) return true;
    errno = ENOTDIR;
    return false;
  }
  if (errno != ENOENT) return false;
  const std::filesystem::path parent = folder.parent_path();
  if (parent.empty() || parent == folder || !makeFolder(parent)) return false;
  if (::mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) return false;
  synchroniseFolder(parent);
  return true;
}

bool synchroniseFolder(const std::filesystem::path& folder) {
  const FileDescriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // Some network file systems have nothing to wait for and refuse.
  return opened && (::fsync(opened.get()) == 0 || errno == EINVAL);
}

}  // namespace desktop
