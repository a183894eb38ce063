#include "desktop/files/user_folders.h"

#include <cstdlib>

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

}  // namespace desktop
