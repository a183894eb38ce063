#include "desktop/ratings/file.h"

#include <fcntl.h>
#include <sys/file.h>

#include <cerrno>
#include <cstring>
#include <thread>

#include "desktop/files/whole_file.h"
#include "desktop/ratings/entries.h"
#include "platform/foundation/url.h"

namespace desktop {

namespace {

using std::chrono::steady_clock;
using Kind = StoreProblem::Kind;

constexpr auto waitingPeriod = std::chrono::seconds(5);
constexpr auto longestWait = std::chrono::milliseconds(400);
constexpr auto waitingStep = std::chrono::milliseconds(5);

int waitForOthers(void* patience, int) { return static_cast<Patience*>(patience)->wait() ? 1 : 0; }

std::optional<StoreProblem> prepareFile(const std::filesystem::path& file, Patience& patience,
                                        Database& database) {
  sqlite3_busy_handler(database.handle(), &waitForOthers, &patience);
  auto version = TablesVersion::older;
  if (const int result = readTablesVersion(database, version); result != SQLITE_OK) {
    return problemWithResult(database, result);
  }
  if (version == TablesVersion::newer) {
    database.leaveLogOnClose();
    return std::nullopt;
  }
  if (isInLogMode(database)) {
    // Leaving it needs that nobody else has the file open, which is not worth waiting for.
    sqlite3_busy_handler(database.handle(), nullptr, nullptr);
    database.execute("PRAGMA journal_mode = TRUNCATE");
    sqlite3_busy_handler(database.handle(), &waitForOthers, &patience);
  }
  if (const int result = useRatingsSettings(database); result != SQLITE_OK) {
    return problemWithResult(database, result);
  }
  if (version == TablesVersion::ours) return std::nullopt;

  const FolderLock lock(file.parent_path(), patience);
  if (lock.isHeldByOther()) return StoreProblem{Kind::busy, "another program holds its folder"};
  if (const int result = makeEntryTables(database); result != SQLITE_OK) {
    auto problem = problemWithResult(database, result);
    // Tables of an earlier version are missing.
    if ((result & 0xFF) == SQLITE_ERROR) problem->kind = StoreProblem::Kind::damaged;
    return problem;
  }
  synchronise(file.parent_path());
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
    case newerTables:
      return StoreProblem{Kind::newer, "it was written by a newer version of this program"};
    default: {
      if (result == SQLITE_READONLY_DBMOVED) return StoreProblem{Kind::moved, reason};
      const int error = isLast ? sqlite3_system_errno(database.handle()) : 0;
      return StoreProblem{Kind::failed,
                          error == 0 ? reason : reason + " (" + std::strerror(error) + ")"};
    }
  }
}

int useRatingsSettings(Database& database) {
  // EXTRA also waits for the folder. The cache (in KiB) holds the marks of a million entries, and
  // grows only as they are read.
  const int result = database.execute("PRAGMA synchronous = EXTRA; PRAGMA cache_size = -32768");
  if (result != SQLITE_OK || isInLogMode(database)) return result;
  return database.execute("PRAGMA journal_mode = TRUNCATE");
}

bool isInLogMode(Database& database) {
  Statement mode;
  return mode.prepare(database.handle(), "PRAGMA journal_mode") == SQLITE_OK &&
         mode.step() == SQLITE_ROW && mode.text(0) == "wal";
}

std::optional<StoreProblem> openRatingsFile(const std::filesystem::path& file, bool create,
                                            Patience& patience, Database& database) {
  if (file.empty()) {
    return StoreProblem{create ? Kind::failed : Kind::absent, "there is no user data folder"};
  }
  std::error_code error;
  const auto status = std::filesystem::status(file, error);
  if (!create && status.type() == std::filesystem::file_type::not_found) {
    return StoreProblem{Kind::absent, "there is none yet"};
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
  const auto logLength =
      std::filesystem::file_size(std::filesystem::path(file.native() + "-wal"), error);
  const auto url = platform::URL::fileURLWithPath(file.native());
  if ((!error && logLength > 0) || !url) {
    return StoreProblem{Kind::failed, "its log cannot be read"};
  }
  const int flags = SQLITE_OPEN_READONLY | SQLITE_OPEN_URI;
  if (const int result = database.open(url->absoluteString() + "?immutable=1", flags);
      result != SQLITE_OK) {
    return problemWithResult(database, result);
  }
  auto version = TablesVersion::older;
  const int result = readTablesVersion(database, version);
  if (result == SQLITE_OK && version != TablesVersion::ours) {
    return StoreProblem{Kind::failed, "it was written by another version of this program"};
  }
  return problemWithResult(database, result);
}

FolderLock::FolderLock(const std::filesystem::path& folder, Patience& patience)
    : folder_(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC)) {
  do {
    isHeldByOther_ = ::flock(folder_.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK;
  } while (isHeldByOther_ && patience.wait());
}

}  // namespace desktop
