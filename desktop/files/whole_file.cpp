#include "desktop/files/whole_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>

#include "desktop/files/file_descriptor.h"
#include "desktop/files/user_folders.h"
#include "platform/foundation/file_manager.h"

namespace desktop {

namespace {

bool writeAll(int descriptor, std::string_view contents) {
  while (!contents.empty()) {
    const ssize_t written = ::write(descriptor, contents.data(), contents.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    contents.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

/// The place behind symbolic links, so that a linked file is replaced and not the link.
std::filesystem::path placeOf(const std::filesystem::path& file) {
  std::error_code error;
  const auto place = std::filesystem::canonical(file, error);
  return error ? std::filesystem::absolute(file, error) : place;
}

}  // namespace

std::optional<std::string> readWholeFile(const std::filesystem::path& file,
                                         std::size_t maximumLength) {
  const FileDescriptor opened(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (!opened) return std::nullopt;
  std::string contents;
  std::array<char, 64 * 1024> chunk{};
  for (;;) {
    const ssize_t length = ::read(opened.get(), chunk.data(), chunk.size());
    if (length < 0 && errno == EINTR) continue;
    if (length < 0) return std::nullopt;
    if (length == 0) return contents;
    contents.append(chunk.data(), static_cast<std::size_t>(length));
    if (contents.size() > maximumLength) {
      errno = EFBIG;
      return std::nullopt;
    }
  }
}

bool writeWholeFile(const std::filesystem::path& file, std::string_view contents) {
  const std::filesystem::path place = placeOf(file);
  struct stat found {};
  if (::stat(place.c_str(), &found) == 0 && !S_ISREG(found.st_mode)) {
    const FileDescriptor opened(::open(file.c_str(), O_WRONLY | O_CLOEXEC));
    return opened && writeAll(opened.get(), contents);
  }
  return platform::writeToFileAtomically(place.string(), contents) &&
         synchroniseFolder(place.parent_path());
}

}  // namespace desktop
