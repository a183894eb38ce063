// One backup of the ratings: a text with one line for each entry, as exports have them, compressed
// (gzip, RFC 1952). The first line tells how many entries the store had; all of them follow, or
// what differs from another backup, which that line names:
//
//   {"kind":"backup","entries":1234,"from":"2026-01-05.jsonl.gz"}
//   {"kind":"removed","digest":"00112233445566778899aabbccddeeff"}
//
// An entry of which only the digest is known is of the kind "unnamed" and has that; so does one
// that an earlier version kept under another digest than this one would.
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "desktop/ratings/entries.h"
#include "desktop/result.h"

namespace desktop {

/// Writes all entries, or with a base, which has all in the same folder, what differs from it.
Result<> writeBackup(const std::filesystem::path& file, EntryCollection& entries,
                     const std::optional<std::filesystem::path>& base);

/// Reads a backup, and the one that it builds on, into a collection that nothing was done with yet.
Result<> readBackup(const std::filesystem::path& file, EntryCollection& entries);

/// True when two collections have the same entries with the same marks and dates.
bool areEqual(EntryCollection& a, EntryCollection& b);

/// What the first line tells.
struct BackupHead {
  std::int64_t entries = 0;
  std::string base = {};  ///< the name of the file that it builds on; empty when it has all entries
};
Result<BackupHead> headOfBackup(const std::filesystem::path& file);

/// The number of its entries when it, and what it builds on, is whole, else what is wrong with it.
Result<std::int64_t> entriesInBackup(const std::filesystem::path& file);

}  // namespace desktop
