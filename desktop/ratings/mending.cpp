#include "desktop/ratings/mending.h"

#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <ctime>

#include "desktop/files/whole_file.h"

namespace desktop {

namespace {

namespace fs = std::filesystem;

fs::path withSuffix(const fs::path& file, const char* suffix) { return file.native() + suffix; }

/// A name beside the file that tells the date and is not taken.
fs::path datedName(const fs::path& file, const char* format, const char* suffix = "") {
  std::array<char, 40> date{};
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  ::localtime_r(&now, &parts);
  std::strftime(date.data(), date.size(), format, &parts);
  fs::path name;
  std::error_code error;
  int again = 1;
  do {
    const std::string number = again == 1 ? "" : "-" + std::to_string(again);
    name = file.parent_path() /
           (file.stem().native() + date.data() + number + file.extension().native() + suffix);
    ++again;
  } while (fs::exists(fs::symlink_status(name, error)));
  return name;
}

bool isEmpty(const fs::path& file) {
  std::error_code error;
  const auto length = fs::file_size(file, error);
  return error || length == 0;
}

Problem systemProblem() { return {std::strerror(errno)}; }

void removeFresh(const fs::path& fresh) {
  std::error_code ignored;
  for (const char* suffix : {"", "-journal"}) fs::remove(withSuffix(fresh, suffix), ignored);
}

/// Writes a new file with the entries of the damaged one.
Result<> carryOver(const fs::path& file, const fs::path& fresh, MendedFile& mended) {
  const auto source = rescueSourceFromFile(file);
  if (!source) return source.problem();
  const auto log = logBeside(file);
  Database database;
  Entries entries;
  int result = database.open(fresh, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  if (result == SQLITE_OK) result = useRatingsSettings(database);
  if (result == SQLITE_OK) result = makeEntryTables(database);
  if (result == SQLITE_OK) result = entries.prepare(database);
  if (result == SQLITE_OK) {
    Transaction transaction(database, Transaction::Kind::write);
    result = transaction.begun();
    MergeCounts counts;
    if (result == SQLITE_OK) {
      result = rescueInto(entries, *source, log ? &*log : nullptr, counts, mended.pages);
    }
    if (result == SQLITE_OK) result = transaction.commit();
    mended.entries = counts.added;
  }
  if (const auto problem = problemWithResult(database, result)) return Problem{problem->text};
  return {};
}

/// Gives the damaged file another name and the new one its name, with no moment in between at
/// which there is none, where the file system has hard links.
Result<> exchange(const fs::path& file, const fs::path& fresh, const fs::path& kept) {
  // Left beside the new file, its logs would be taken for the new one's.
  for (const char* suffix : {"-wal", "-journal"}) {
    const fs::path log = withSuffix(file, suffix);
    if (isEmpty(log)) continue;
    if (::rename(log.c_str(), withSuffix(kept, suffix).c_str()) != 0) return systemProblem();
  }
  if (::link(file.c_str(), kept.c_str()) != 0 && ::rename(file.c_str(), kept.c_str()) != 0) {
    return systemProblem();
  }
  if (::rename(fresh.c_str(), file.c_str()) != 0) return systemProblem();
  for (const char* suffix : {"-wal", "-shm"}) ::unlink(withSuffix(file, suffix).c_str());
  return synchronise(file.parent_path());
}

}  // namespace

Result<MendedFile> mendRatingsFile(const fs::path& file, Patience& patience, Database damaged) {
  const FolderLock lock(file.parent_path(), patience);
  if (lock.isHeldByOther()) return Problem{"another program holds its folder"};
  MendedFile mended;
  if (damaged.hasMoved()) return mended;
  // Keeps others from writing what would not be carried over, as far as the damage allows that.
  const Transaction hold(damaged, Transaction::Kind::write);
  damaged.leaveLogOnClose();
  const fs::path fresh =
      file.parent_path() / (file.stem().native() + "-rescued" + file.extension().native());
  removeFresh(fresh);
  const fs::path kept = datedName(file, "-damaged-%Y-%m-%d-%H%M%S");
  auto done = carryOver(file, fresh, mended);
  if (done) done = exchange(file, fresh, kept);
  removeFresh(fresh);
  if (!done) return done.problem();
  mended.kept = kept;
  return mended;
}

Result<fs::path> keepStrayLog(const fs::path& file, Patience& patience) {
  const fs::path log = withSuffix(file, "-wal");
  std::error_code error;
  if (isEmpty(log) || fs::exists(file, error)) return fs::path();
  const FolderLock lock(file.parent_path(), patience);
  if (lock.isHeldByOther()) return Problem{"another program holds its folder"};
  if (fs::exists(file, error)) return fs::path();
  const fs::path kept = datedName(file, "-log-%Y-%m-%d-%H%M%S", "-wal");
  if (::rename(log.c_str(), kept.c_str()) != 0) return systemProblem();
  synchronise(file.parent_path());
  return kept;
}

}  // namespace desktop
