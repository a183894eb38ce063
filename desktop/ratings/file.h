// The file of the ratings store: found, opened, brought to this program's version.
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>

#include "desktop/files/file_descriptor.h"
#include "desktop/ratings/sqlite.h"

namespace desktop {

/// How long the program may wait for others that hold the file: 0.4 seconds in any five, so that
/// a row of requests to a locked file does not add up to a frozen window.
class Patience {
 public:
  /// Waits a moment; false, without waiting, when the time is used up.
  bool wait();

 private:
  std::chrono::steady_clock::time_point begin_{};
  std::chrono::steady_clock::duration waited_{};
};

/// What stands between a request and its answer.
struct StoreProblem {
  enum class Kind {
    absent,   ///< there is no file yet
    moved,    ///< the file that is open has another name by now, or none
    newer,    ///< the file is of a newer version of the program
    damaged,  ///< the file is not a sound database, or not ours
    busy,     ///< another process holds the file
    failed    ///< anything else: no space, no permission, input and output errors
  };
  Kind kind;
  std::string text;  ///< for people
};

/// What a result code of the database means; none when it means no harm.
std::optional<StoreProblem> problemWithResult(const Database& database, int result);

/// Sets a connection that is to write: what it commits is on the disk, and in the one file, so that
/// this can be copied or moved whenever nobody writes. Answers a result code of the database.
int useRatingsSettings(Database& database);

/// True for a file in write-ahead mode. Earlier versions of this program made them; openRatingsFile
/// brings them over unless others have them open.
bool isInLogMode(Database& database);

/// Opens the file for reading and writing and brings it forward; a file of a newer version is left
/// as it is. With `create` the file and its folder are made when they are missing. The database is
/// handed out also when it is damaged.
std::optional<StoreProblem> openRatingsFile(const std::filesystem::path& file, bool create,
                                            Patience& patience, Database& database);

/// Opens a file in write-ahead mode for reading that nobody can write, in a folder that nobody can
/// write. Valid for one request: changes made by others after that would go unnoticed.
std::optional<StoreProblem> openUnwritableRatingsFile(const std::filesystem::path& file,
                                                      Database& database);

/// Keeps other processes of this program from creating the file, or mending it, meanwhile. Where
/// the file system has no such locks, work goes on without.
class FolderLock {
 public:
  FolderLock(const std::filesystem::path& folder, Patience& patience);
  bool isHeldByOther() const { return isHeldByOther_; }

 private:
  FileDescriptor folder_;
  bool isHeldByOther_ = false;
};

}  // namespace desktop
