#include "desktop/ratings/backups.h"

#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <ctime>
#include <limits>
#include <map>
#include <set>
#include <string_view>
#include <thread>

#include "desktop/files/whole_file.h"
#include "desktop/ratings/backup_file.h"

namespace desktop {

namespace {

namespace fs = std::filesystem;
using std::chrono::days;

constexpr std::string_view extension = ".jsonl.gz";

fs::path folderOf(const fs::path& store) {
  return store.parent_path() / (store.stem().native() + "-backups");
}

std::string dateOf(Day day) {
  const std::chrono::year_month_day date(day);
  std::array<char, 40> text{};
  const int length =
      std::snprintf(text.data(), text.size(), "%04d-%02u-%02u", static_cast<int>(date.year()),
                    static_cast<unsigned>(date.month()), static_cast<unsigned>(date.day()));
  return {text.data(), static_cast<std::size_t>(length)};
}

/// The day that a text is the date of; none when it is no date as dateOf writes it.
std::optional<Day> dayOf(std::string_view date) {
  if (date.size() != 10) return std::nullopt;
  int year = 0;
  unsigned month = 0, day = 0;
  std::from_chars(date.data(), date.data() + 4, year);
  std::from_chars(date.data() + 5, date.data() + 7, month);
  std::from_chars(date.data() + 8, date.data() + 10, day);
  const std::chrono::year_month_day parts{std::chrono::year(year), std::chrono::month(month),
                                          std::chrono::day(day)};
  if (!parts.ok() || dateOf(parts) != date) return std::nullopt;
  return parts;
}

fs::path fileOf(const fs::path& store, Day day) {
  return folderOf(store) / (dateOf(day) + std::string(extension));
}

/// Copies a few pages at a time, and begins again when they change meanwhile.
int copyInSteps(Database& from, Database& to) {
  constexpr int pagesAtOnce = 64;
  constexpr int longestWait = 400;  // steps of a millisecond in which nothing can be read
  sqlite3_backup* copying = sqlite3_backup_init(to.handle(), "main", from.handle(), "main");
  if (copying == nullptr) return sqlite3_extended_errcode(to.handle());
  int result = SQLITE_OK;
  for (int waited = 0; waited < longestWait;) {
    result = sqlite3_backup_step(copying, pagesAtOnce);
    const bool isBusy = result == SQLITE_BUSY || result == SQLITE_LOCKED;
    if (result != SQLITE_OK && !isBusy) break;
    if (isBusy) ++waited;
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  }
  const int finished = sqlite3_backup_finish(copying);
  return result == SQLITE_DONE ? finished : result;
}

/// Copies a store's entries as they are at one moment.
int copyEntries(const fs::path& store, EntryCollection& copy) {
  Database database;
  int result = database.open(store, SQLITE_OPEN_READWRITE);
  auto version = TablesVersion::older;
  if (result == SQLITE_OK) result = readTablesVersion(database, version);
  if (result == SQLITE_OK && version == TablesVersion::newer) result = newerTables;
  if (result == SQLITE_OK) result = copy.database.openTemporary();
  // A card should stay small meanwhile: no more than 8 MiB of it, nor for bringing it into order.
  if (result == SQLITE_OK) result = copy.database.execute("PRAGMA cache_size = -8192");
  if (result == SQLITE_OK) result = copyInSteps(database, copy.database);
  if (result == SQLITE_OK) result = copy.check();
  return result == SQLITE_OK ? copy.entries.prepare(copy.database) : result;
}

/// Writes a backup that was read back and found to be the same, smaller than `most` bytes.
Result<> writeSound(const fs::path& file, EntryCollection& copy,
                    const std::optional<fs::path>& base, std::uintmax_t most) {
  if (auto written = writeBackup(file, copy, base); !written) return written;
  std::error_code error;
  fs::permissions(file, fs::perms::owner_read | fs::perms::owner_write, error);
  if (fs::file_size(file, error) > most) return Problem{"it is too large"};
  EntryCollection readBack;
  if (auto read = readBackup(file, readBack); !read) return read;
  if (!areEqual(copy, readBack)) return Problem{"it was written wrongly"};
  return synchronise(file);
}

/// The backup to build on: the last one that has all entries.
std::optional<fs::path> lastWholeBackup(const fs::path& store) {
  const auto present = backupDays(store);
  for (auto each = present.rbegin(); each != present.rend(); ++each) {
    fs::path file = fileOf(store, *each);
    if (const auto head = headOfBackup(file); head && head->base.empty()) return file;
  }
  return std::nullopt;
}

/// Writes the day's backup: what differs from the last whole one as long as that is little.
Result<> writeFresh(const fs::path& store, const fs::path& fresh) {
  EntryCollection copy;
  const int result = copyEntries(store, copy);
  if (const auto problem = problemWithResult(copy.database, result)) return Problem{problem->text};
  if (const auto base = lastWholeBackup(store)) {
    std::error_code error;
    const auto most = fs::file_size(*base, error) / 4;
    if (const auto written = writeSound(fresh, copy, base, most)) return {};
  }
  return writeSound(fresh, copy, std::nullopt, std::numeric_limits<std::uintmax_t>::max());
}

/// Copies a store's file, without the remains of what was removed.
int copyStore(const fs::path& store, const fs::path& target) {
  std::error_code ignored;
  fs::remove(target, ignored);
  Database from, to;
  int result = from.open(store, SQLITE_OPEN_READWRITE);
  if (result == SQLITE_OK) {
    result = to.open(target, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE);
  }
  if (result == SQLITE_OK) ::chmod(target.c_str(), S_IRUSR | S_IWUSR);
  if (result == SQLITE_OK) result = copyInSteps(from, to);
  if (result == SQLITE_OK) result = to.execute("PRAGMA journal_mode = DELETE; VACUUM");
  to.close();
  EntryCollection readBack;
  if (result == SQLITE_OK) result = copyEntries(target, readBack);
  if (result != SQLITE_OK) fs::remove(target, ignored);
  return result;
}

/// Removes all but the first sound one of each past week, and of each month before, and those that
/// they build on.
void removeSurplus(const fs::path& store, Day day) {
  constexpr days daily(7), weekly(7 + 4 * 7);
  std::set<fs::path> surplus;
  std::map<std::pair<bool, std::int64_t>, std::vector<Day>> periods;
  for (const Day each : backupDays(store)) {
    const days age = day - each;
    if (age < daily) continue;
    const std::chrono::year_month_day date(each);
    const std::int64_t month =
        static_cast<int>(date.year()) * 12 + static_cast<int>(static_cast<unsigned>(date.month()));
    const std::int64_t week = each.time_since_epoch().count() / 7;
    const bool isWeekly = age < weekly;
    periods[{isWeekly, isWeekly ? week : month}].push_back(each);
  }
  for (const auto& [period, members] : periods) {
    if (members.size() < 2) continue;
    const auto kept = std::find_if(members.begin(), members.end(), [&](Day each) {
      return static_cast<bool>(entriesInBackup(fileOf(store, each)));
    });
    if (kept == members.end()) continue;
    for (const Day each : members) {
      if (each != *kept) surplus.insert(fileOf(store, each));
    }
  }
  for (const Day each : backupDays(store)) {
    const fs::path file = fileOf(store, each);
    const auto head = headOfBackup(file);
    if (head && !surplus.contains(file)) surplus.erase(folderOf(store) / head->base);
  }
  std::error_code ignored;
  for (const fs::path& file : surplus) fs::remove(file, ignored);
}

std::string allDates(const std::vector<Day>& present) {
  std::string text;
  for (const Day each : present) text += (text.empty() ? "" : ", ") + dateOf(each);
  return text;
}

}  // namespace

Day today() {
  const std::time_t now = std::time(nullptr);
  std::tm parts{};
  ::localtime_r(&now, &parts);
  return std::chrono::year_month_day{std::chrono::year(parts.tm_year + 1900),
                                     std::chrono::month(static_cast<unsigned>(parts.tm_mon + 1)),
                                     std::chrono::day(static_cast<unsigned>(parts.tm_mday))};
}

std::vector<Day> backupDays(const fs::path& store) {
  std::vector<Day> present;
  std::error_code error;
  for (fs::directory_iterator each(folderOf(store), error), end; !error && each != end;
       each.increment(error)) {
    const std::string name = each->path().filename();
    const auto day = name.ends_with(extension)
                         ? dayOf(name.substr(0, name.size() - extension.size()))
                         : std::nullopt;
    if (day) present.push_back(*day);
  }
  std::sort(present.begin(), present.end());
  return present;
}

Result<bool> backUpRatings(const fs::path& store, Day day) {
  std::error_code error;
  // Noted before the copy: what changes while it is made counts as changed after it.
  const auto changed = fs::last_write_time(store, error);
  if (error) return false;
  const auto present = backupDays(store);
  if (!present.empty()) {
    const fs::path last = fileOf(store, present.back());
    if (present.back() >= day || fs::last_write_time(last, error) == changed) return false;
  }
  if (const auto made = makeFolder(folderOf(store)); !made) return made.problem();
  Patience patience;
  const FolderLock lock(folderOf(store), patience);
  if (lock.isHeldByOther()) return false;
  const fs::path fresh = folderOf(store) / "unfinished";
  if (const auto written = writeFresh(store, fresh); !written) {
    fs::remove(fresh, error);
    return written.problem();
  }
  fs::last_write_time(fresh, changed, error);
  fs::rename(fresh, fileOf(store, day), error);
  if (error) return Problem{error.message()};
  if (const auto done = synchronise(folderOf(store)); !done) return done.problem();
  removeSurplus(store, day);
  return true;
}

std::string listOfBackups(const fs::path& store) {
  const auto present = backupDays(store);
  if (present.empty()) return "There are no backups of the ratings yet.\n";
  std::string text;
  for (auto each = present.rbegin(); each != present.rend(); ++each) {
    const auto entries = entriesInBackup(fileOf(store, *each));
    text += dateOf(*each) + "  " +
            (entries ? std::to_string(*entries) + (*entries == 1 ? " entry" : " entries")
                     : "cannot be used: " + entries.problem().text) +
            '\n';
  }
  return text;
}

Result<std::string> restoreRatings(RatingsStore& store, const std::string& date) {
  const auto present = backupDays(store.file());
  const auto day = dayOf(date);
  if (!day || std::find(present.begin(), present.end(), *day) == present.end()) {
    return Problem{
        (day ? "there is no backup of " + date : '"' + date + "\" is no date as 2026-01-31") +
        (present.empty() ? "; there are no backups yet"
                         : "; there are those of " + allDates(present))};
  }
  EntryCollection backup;
  std::int64_t entries = 0;
  if (const auto read = readBackup(fileOf(store.file(), *day), backup); !read) {
    return Problem{"the backup of " + date + " cannot be used: " + read.problem().text +
                   "; nothing was restored"};
  }
  backup.database.readInteger("SELECT count(*) FROM marks", entries);
  fs::path aside;
  for (int again = 1; again == 1 || fs::exists(aside); ++again) {
    aside =
        store.file().parent_path() / (store.file().stem().native() + "-replaced-" +
                                      dateOf(today()) + "-" + std::to_string(again) + ".sqlite");
  }
  const auto replaced = store.replaceAll(backup, [&] { return copyStore(store.file(), aside); });
  if (!replaced) return Problem{replaced.problem().text + "; nothing was restored"};
  return "Restored " + std::to_string(entries) + (entries == 1 ? " entry" : " entries") + " of " +
         date + "; what was there is kept as " + aside.native();
}

}  // namespace desktop
