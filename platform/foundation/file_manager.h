// Folders and files: where the user's data lies, what a folder holds, making folders, reading and
// writing files as a whole.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/foundation/data.h"
#include "platform/foundation/url.h"

namespace platform {

/// $XDG_DATA_HOME when it is an absolute path, else ~/.local/share (freedesktop.org's base
/// directories); none when neither is known.
std::optional<std::string> userDataFolder();

/// The folder that the applications of a group share: named after the group, in the user's data
/// folder. It need not exist yet. None when the identifier is empty or there is no data folder.
std::optional<URL> containerURLForSecurityApplicationGroupIdentifier(const std::string& identifier);

enum NSDirectoryEnumerationOptions : unsigned { NSDirectoryEnumerationSkipsHiddenFiles = 4 };

/// The addresses of what lies in a folder, by name; addresses of folders end in "/". None when it
/// cannot be listed.
std::optional<std::vector<URL>> contentsOfDirectoryAtURL(const URL& url, unsigned options);

/// True when there is a file or a folder at the address.
bool checkResourceIsReachable(const URL& url);

/// Makes a folder and those above it that are missing; false when it is not there afterwards.
bool createDirectoryAtURL(const URL& url);

/// The bytes of a regular file; none when it cannot be read or has more bytes than this.
std::optional<Data> dataWithContentsOfFile(const std::string& path, std::uintmax_t largest);

/// Puts a file with these contents in place, on the disk and all at once; a file of the same name
/// is replaced and its permissions stay. False, with errno telling why and nothing left behind,
/// when it cannot be done.
bool writeToFileAtomically(const std::string& path, std::string_view contents);

/// Takes the next piece of a file; false, with errno telling why, when it cannot be written.
using FileSink = std::function<bool(std::string_view piece)>;

/// The same with contents that come in pieces, which `fill` hands over; false also when it does so.
bool writeToFileAtomically(const std::string& path,
                           const std::function<bool(const FileSink& sink)>& fill);

}  // namespace platform
