// Where the user's files of each kind are kept (XDG Base Directories 0.8, freedesktop.org).
#pragma once

#include <filesystem>

namespace desktop {

/// $XDG_DATA_HOME when it is an absolute path, else ~/.local/share; empty when neither is known.
std::filesystem::path userDataFolder();

/// $XDG_CONFIG_HOME when it is an absolute path, else ~/.config; empty when neither is known.
std::filesystem::path userConfigFolder();

/// $XDG_STATE_HOME when it is an absolute path, else ~/.local/state; empty when neither is known.
std::filesystem::path userStateFolder();

}  // namespace desktop
