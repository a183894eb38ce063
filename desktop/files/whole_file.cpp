#include "desktop/files/whole_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <optional>

#include "desktop/files/file_descriptor.h"

namespace desktop {

namespace {

namespace fs = std::filesystem;

Problem systemProblem(int error = errno) { return {std::strerror(error)}; }

bool writeAll(int descriptor, std::string_view contents) {
  while (!contents.empty()) {
    const ssize_t written = ::write(descriptor, contents.data(), contents.size());
    if (written < 0 && errno == EINTR) continue;
    if (written < 0) return false;
    contents.remove_prefix(static_cast<std::size_t>(written));
  }
  return true;
}

using Fill = std::function<bool(const platform::FileSink& sink)>;

Result<> writeTo(const FileDescriptor& file, const Fill& fill) {
  const auto sink = [&file](std::string_view piece) { return writeAll(file.get(), piece); };
  return file && fill(sink) ? Result<>() : systemProblem();
}

/// A file that this program has open, known by the name that the system gives it (/dev/stdout,
/// /dev/fd/3): opened anew, it would be written from its beginning.
std::optional<FileDescriptor> ownOpenFile(fs::path file) {
  std::error_code error;
  const auto folder = fs::canonical("/proc/self/fd", error);
  for (int link = 0; link < 10 && !error; ++link) {
    if (fs::canonical(fs::absolute(file).parent_path(), error) == folder && !error) {
      return FileDescriptor(::fcntl(std::atoi(file.filename().c_str()), F_DUPFD_CLOEXEC, 0));
    }
    const auto target = fs::read_symlink(file, error);
    file = fs::absolute(file).parent_path() / target;
  }
  return std::nullopt;
}

/// The place behind symbolic links, so that a linked file is replaced and not the link.
fs::path placeOf(const fs::path& file) {
  std::error_code error;
  const auto place = fs::canonical(file, error);
  return error ? fs::absolute(file, error) : place;
}

}  // namespace

Result<> writeWholeFile(const fs::path& file, std::string_view contents) {
  return writeWholeFile(file, [&](const platform::FileSink& sink) { return sink(contents); });
}

Result<> writeWholeFile(const fs::path& file, const Fill& fill) {
  if (const auto own = ownOpenFile(file)) return writeTo(*own, fill);
  const fs::path place = placeOf(file);
  std::error_code error;
  const auto status = fs::status(place, error);
  if (fs::exists(status) && !fs::is_regular_file(status)) {
    return writeTo(FileDescriptor(::open(place.c_str(), O_WRONLY | O_CLOEXEC)), fill);
  }
  if (!platform::writeToFileAtomically(place.string(), fill)) return systemProblem();
  return synchronise(place.parent_path());
}

Result<> makeFolder(const fs::path& folder) {
  struct stat found {};
  if (::stat(folder.c_str(), &found) == 0) {
    return S_ISDIR(found.st_mode) ? Result<>() : systemProblem(ENOTDIR);
  }
  if (errno != ENOENT || folder == folder.parent_path()) return systemProblem();
  if (auto made = makeFolder(folder.parent_path()); !made) return made;
  if (::mkdir(folder.c_str(), S_IRWXU) != 0 && errno != EEXIST) return systemProblem();
  synchronise(folder.parent_path());
  return {};
}

Result<> synchronise(const fs::path& path) {
  const FileDescriptor opened(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
  // Some network file systems have nothing to wait for and refuse.
  if (opened && (::fsync(opened.get()) == 0 || errno == EINVAL)) return {};
  return systemProblem();
}

}  // namespace desktop
