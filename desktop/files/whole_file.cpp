#include "desktop/files/whole_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <array>
#include <cerrno>
#include <cstring>

#include "desktop/files/file_descriptor.h"
#include "platform/foundation/file_manager.h"

namespace desktop {

namespace {

namespace fs = std::filesystem;

Problem systemProblem(int error = errno) { return {std::strerror(error)}; }

Result<> writeDirectly(const fs::path& file, std::string_view contents) {
  const FileDescriptor opened(::open(file.c_str(), O_WRONLY | O_CLOEXEC));
  if (!opened) return systemProblem();
  while (!contents.empty()) {
    const ssize_t written = ::write(opened.get(), contents.data(), contents.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return systemProblem();
    contents.remove_prefix(static_cast<std::size_t>(written));
  }
  return {};
}

/// The place behind symbolic links, so that a linked file is replaced and not the link.
fs::path placeOf(const fs::path& file) {
  std::error_code error;
  const auto place = fs::canonical(file, error);
  return error ? fs::absolute(file, error) : place;
}

}  // namespace

Result<std::string> readWholeFile(const fs::path& file, std::size_t maximumLength) {
  const FileDescriptor opened(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
  if (!opened) return systemProblem();
  std::string contents;
  std::array<char, 64 * 1024> chunk{};
  for (;;) {
    const ssize_t length = ::read(opened.get(), chunk.data(), chunk.size());
    if (length < 0 && errno == EINTR) continue;
    if (length < 0) return systemProblem();
    if (length == 0) return contents;
    contents.append(chunk.data(), static_cast<std::size_t>(length));
    if (contents.size() > maximumLength) return systemProblem(EFBIG);
  }
}

Result<> writeWholeFile(const fs::path& file, std::string_view contents) {
  const fs::path place = placeOf(file);
  std::error_code error;
  const auto status = fs::status(place, error);
  if (fs::exists(status) && !fs::is_regular_file(status)) return writeDirectly(place, contents);
  if (!platform::writeToFileAtomically(place.string(), contents)) return systemProblem();
  return synchroniseFolder(place.parent_path());
}

Result<> makeFolder(const fs::path& folder) {
  struct stat found {};
  if (::stat(folder.c_str(), &found) == 0) {
    return S_ISDIR(found.st_mode) ? Result<>() : systemProblem(ENOTDIR);
  }
  if (errno != ENOENT || folder == folder.parent_path()) return systemProblem();
  if (const auto made = makeFolder(folder.parent_path()); !made) return made;
  if (::mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) return systemProblem();
  synchroniseFolder(folder.parent_path());
  return {};
}

Result<> synchroniseFolder(const fs::path& folder) {
  const FileDescriptor opened(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
  // Some network file systems have nothing to wait for and refuse.
  if (opened && (::fsync(opened.get()) == 0 || errno == EINVAL)) return {};
  return systemProblem();
}

}  // namespace desktop
