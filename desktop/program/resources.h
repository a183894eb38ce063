// The widget's resources.
#pragma once

#include <filesystem>
#include <memory>

#include "platform/application/bundle.h"

namespace desktop {

/// The bundle in a folder, in the user's languages; null when there is none.
std::unique_ptr<platform::NSBundle> openBundle(const std::filesystem::path& path);

}  // namespace desktop
