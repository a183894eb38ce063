// Small files read and written as a whole.
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace desktop {

/// The contents of a file; none, with errno telling why, when it cannot be read or is longer than
/// maximumLength bytes (EFBIG).
std::optional<std::string> readWholeFile(const std::filesystem::path& file,
                                         std::size_t maximumLength);

/// Puts a file in place with these contents, on the disk and all at once: whoever looks sees the
/// old one or the new one. What is no regular file (a pipe, a device) is written to directly.
/// False, with errno telling why and the old file as it was, when it cannot be done.
bool writeWholeFile(const std::filesystem::path& file, std::string_view contents);

}  // namespace desktop
