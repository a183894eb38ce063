// Small files read and written as a whole, and folders that last.
#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

#include "desktop/result.h"
#include "platform/foundation/file_manager.h"

namespace desktop {

// The problems tell the system's reason and leave it to others to name the file.

/// Puts a file in place with these contents, on the disk and all at once: whoever looks sees the
/// old one or the new one, and the old one stays when it cannot be done. A symbolic link stays, and
/// what it leads to is replaced. What is no regular file (a pipe, a device) is written to directly.
Result<> writeWholeFile(const std::filesystem::path& file, std::string_view contents);

/// The same with contents that come in pieces, which `fill` hands over; nothing is put in place
/// when it answers false. What the program has open itself (/dev/stdout) is written to where it
/// stands.
Result<> writeWholeFile(const std::filesystem::path& file,
                        const std::function<bool(const platform::FileSink& sink)>& fill);

/// Makes a folder that lasts, with every folder above it that is missing, for the user alone.
Result<> makeFolder(const std::filesystem::path& folder);

/// Waits until a file, or the entries of a folder (files made, renamed, removed), are on the disk.
Result<> synchronise(const std::filesystem::path& path);

}  // namespace desktop
