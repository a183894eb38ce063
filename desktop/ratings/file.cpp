#include "desktop/ratings/file.h"

#include <fcntl.h>
#include <sys/file.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <thread>

#include "desktop/files/file_descriptor.h"
#include "desktop/files/whole_file.h"
#include "platform/foundation/url.h"

namespace desktop {

namespace {

using std::chrono::steady_clock;
using Kind = StoreProblem::Kind;

constexpr auto waitingPeriod = std::chrono::seconds(5);
constexpr auto longestWait = std::chrono::milliseconds(400);
constexpr auto waitingStep = std::chrono::milliseconds(5);

// Marks lie apart from the names they belong to, and under a digest of the key, so that reading
// them touches few pages however many there are. The names are for people and for exports, from
// which keys are made again.
constexpr std::array schemaSteps = {
    "CREATE TABLE marks ("
    "  digest BLOB PRIMARY KEY NOT NULL,"
    "  rating INTEGER,"          // 0 to 100
    "  rating_changed INTEGER,"  // seconds since 1970, UTC
    "  loved INTEGER,"           // 0 or 1
    "  loved_changed INTEGER"
    ") WITHOUT ROWID;"
    "CREATE TABLE names ("
    "  digest BLOB PRIMARY KEY NOT NULL,"
    "  kind INTEGER NOT NULL,"  // 0 track, 1 album
    "  address TEXT NOT NULL,"
    "  artist TEXT NOT NULL,"
    "  album TEXT NOT NULL,"
    "  album_artist TEXT NOT NULL,"
    "  title TEXT NOT NULL,"
    "  length INTEGER NOT NULL"  // whole seconds, 0 when unknown
    ") WITHOUT ROWID"};

int waitForOthers(void* patience, int) { return static_cast<Patience*>(patience)->wait() ? 1 : 0; }

/// Keeps other processes of this program from creating the file, or setting it aside, meanwhile.
/// Where the file system has no such locks, work goes on without.
class FolderLock {
 public:
  FolderLock(const std::filesystem::path& folder, Patience& patience)
      : folder_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
    do {
      isHeldByOther_ = ::flock(folder_.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    } while (isHeldByOther_ && patience.wait());
  }
  bool isHeldByOther() const { return isHeldByOther_; }

 private:
  FileDescriptor folder_;
  bool isHeldByOther_ = false;
};

std::filesystem::path withSuffix(const std::filesystem::path& file, const char* suffix) {
  return std::filesystem::path(file.native() + suffix);
}

std::filesystem::path nameForDamagedFile(const std::filesystem::path& file) {
  std::array<char, 32> date{};
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  ::localtime_r(&now, &parts);
  std::strftime(date.data(), date.size(), "-damaged-%Y-%m-%d-%H%M%S", &parts);
  std::filesystem::path name;
  int again = 1;
  do {
    const std::string number = again == 1 ? "" : "-" + std::to_string(again);
    name = file.parent_path() /
           (file.stem().native() + date.data() + number + file.extension().native());
    ++again;
  } while (::access(name.c_str(), F_OK) == 0);
  return name;
}

std::optional<StoreProblem> prepareFile(const std::filesystem::path& file, Patience& patience,
                                        Database& database) {
  sqlite3_busy_handler(database.handle(), &waitForOthers, &patience);
  std::int64_t version = 0;
  const auto readVersion = [&] { return database.readInteger("PRAGMA user_version", version); };
  if (const int result = readVersion(); result != SQLITE_OK) {
    return problemWithResult(database, result);
  }
  if (version > static_cast<std::int64_t>(schemaSteps.size())) {
    database.leaveLogOnClose();
    return StoreProblem{Kind::newer, "it was written by a newer version of this program"};
  }
  // EXTRA also waits for the folder, should the file not be in write-ahead mode. The cache (in
  // KiB) holds the marks of a million entries, and grows only as they are read.
  if (const int result = database.execute("PRAGMA synchronous = EXTRA; PRAGMA cache_size = -32768");
      result != SQLITE_OK) {
    return problemWithResult(database, result);
  }
  if (version == static_cast<std::int64_t>(schemaSteps.size())) return std::nullopt;

  const FolderLock lock(file.parent_path(), patience);
  if (lock.isHeldByOther()) return StoreProblem{Kind::busy, "another program holds its folder"};
  if (const int result = database.execute("PRAGMA journal_mode = WAL"); result != SQLITE_OK) {
    return problemWithResult(database, result);
  }
  if (const int result = migrate(database, schemaSteps); result != SQLITE_OK) {
    return problemWithResult(database, result);
  }
  synchroniseFolder(file.parent_path());
  return std::nullopt;
}

}  // namespace

bool Patience::wait() {
  const auto now = steady_clock::now();
  if (now - begin_ > waitingPeriod) {
    begin_ = now;
    waited_ = {};
  }
  if (waited_ >= longestWait) return false;
  std::this_thread::sleep_for(waitingStep);
  waited_ += steady_clock::now() - now;
  return true;
}

std::optional<StoreProblem> problemWithResult(const Database& database, int result) {
  // The database's own message is the better one, unless something else was asked of it since.
  const bool isLast = database && sqlite3_extended_errcode(database.handle()) == result;
  const std::string reason = isLast ? sqlite3_errmsg(database.handle()) : sqlite3_errstr(result);
  switch (result & 0xFF) {
    case SQLITE_OK:
    case SQLITE_ROW:
    case SQLITE_DONE:
      return std::nullopt;
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_FORMAT:
      return StoreProblem{Kind::damaged, reason};
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
    case SQLITE_PROTOCOL:
      return StoreProblem{Kind::busy, reason};
    default: {
      const int error = isLast ? sqlite3_system_errno(database.handle()) : 0;
      return StoreProblem{Kind::failed,
                          error == 0 ? reason : reason + " (" + std::strerror(error) + ")"};
    }
  }
}

std::optional<StoreProblem> openRatingsFile(const std::filesystem::path& file, bool create,
                                            Patience& patience, Database& database) {
  if (file.empty()) {
    return StoreProblem{create ? Kind::failed : Kind::absent, "there is no user data folder"};
  }
  std::error_code error;
  const auto status = std::filesystem::status(file, error);
  if (!create && status.type() == std::filesystem::file_type::not_found) {
    return StoreProblem{Kind::absent, {}};
  }
  if (create && !std::filesystem::exists(status)) {
    if (const auto made = makeFolder(file.parent_path()); !made) {
      return StoreProblem{Kind::failed, made.problem().text};
    }
  }
  const int flags = SQLITE_OPEN_READWRITE | (create ? SQLITE_OPEN_CREATE : 0);
  if (const int result = database.open(file, flags); result != SQLITE_OK) {
    return problemWithResult(database, result);
  }
  return prepareFile(file, patience, database);
}

std::optional<StoreProblem> openUnwritableRatingsFile(const std::filesystem::path& file,
                                                      Database& database) {
  // With a log beside the file, the file alone is not the whole truth.
  std::error_code error;
  const auto logLength = std::filesystem::file_size(withSuffix(file, "-wal"), error);
  const auto url = platform::URL::fileURLWithPath(file.native());
  if ((!error && logLength > 0) || !url) {
    return StoreProblem{Kind::failed, "its log cannot be read"};
  }
  const int flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_URI;
  if (const int result = database.open(url->absoluteString() + "?immutable=1", flags);
      result != SQLITE_OK) {
    return problemWithResult(database, result);
  }
  std::int64_t version = 0;
  const int result = database.readInteger("PRAGMA user_version", version);
  if (result == SQLITE_OK && version != static_cast<std::int64_t>(schemaSteps.size())) {
    return StoreProblem{Kind::failed, "it was written by another version of this program"};
  }
  return problemWithResult(database, result);
}

Result<std::filesystem::path> setDamagedFileAside(const std::filesystem::path& file,
                                                  Patience& patience, Database database) {
  const FolderLock lock(file.parent_path(), patience);
  if (lock.isHeldByOther()) return Problem{"another program holds its folder"};
  if (database.hasMoved()) return std::filesystem::path();
  database.leaveLogOnClose();
  database.close();
  const std::filesystem::path name = nameForDamagedFile(file);
  // The log goes first: left alone beside a new file it would be taken for that file's.
  std::error_code error;
  std::filesystem::rename(withSuffix(file, "-wal"), withSuffix(name, "-wal"), error);
  if (!error || error == std::errc::no_such_file_or_directory) {
    std::filesystem::rename(file, name, error);
  }
  if (error) return Problem{error.message()};
  std::filesystem::remove(withSuffix(file, "-shm"), error);
  synchroniseFolder(file.parent_path());
  return name;
}

}  // namespace desktop
