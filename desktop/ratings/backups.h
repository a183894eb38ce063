// Dated copies of the ratings store in a folder beside it, and the way back to one.
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "desktop/ratings/store.h"
#include "desktop/result.h"

namespace desktop {

using Day = std::chrono::sys_days;

/// The present day where the user is.
Day today();

/// The days of which there are backups, the oldest first.
std::vector<Day> backupDays(const std::filesystem::path& store);

/// Makes the day's backup (backup_file.h), unless there is one or nothing has changed since the
/// last, and removes those that are too many: kept are seven days, then the first of each of four
/// weeks, then of each month. Only a copy that was read back and found sound takes its place, or
/// another's. True when one was made. Any thread; a click waits for a few pages at most.
Result<bool> backUpRatings(const std::filesystem::path& store, Day day);

/// The backups with the number of entries, one a line, the newest first.
std::string listOfBackups(const std::filesystem::path& store);

/// Replaces the store's entries by those of the backup of a day (as 2026-01-31), in one commit.
/// What is replaced is kept in a file of its own, which the report names.
Result<std::string> restoreRatings(RatingsStore& store, const std::string& date);

}  // namespace desktop
