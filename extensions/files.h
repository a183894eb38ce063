// What a folder shows.
#pragma once

#include <optional>
#include <vector>

#include "platform/foundation/url.h"

namespace virelune {

/// The addresses of the files and folders in a folder, without those whose names begin with a
/// dot; folders are listed, not entered. None without an address and when the folder cannot be
/// listed.
std::optional<std::vector<platform::URL>> vl_visibleContentsOfDirectoryAtURL(
    const std::optional<platform::URL>& url);

/// True when the folder shows at least one entry.
bool vl_hasVisibleContentsOfDirectoryAtURL(const std::optional<platform::URL>& url);

}  // namespace virelune
