// The file of the ratings store: found, opened, brought to this program's version, set aside when
// it is damaged.
#pragma once

#include <chrono>
#include <filesystem>
#include <optional>
#include <string>

#include "desktop/ratings/sqlite.h"
#include "desktop/result.h"

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

/// Opens the file for reading and writing and brings it forward. With `create` the file and its
/// folder are made when they are missing. The database is handed out also when it is damaged.
std::optional<StoreProblem> openRatingsFile(const std::filesystem::path& file, bool create,
                                            Patience& patience, Database& database);

/// Opens a file for reading that nobody can write, in a folder that nobody can write. Valid
/// for one request: changes made by others after that would go unnoticed.
std::optional<StoreProblem> openUnwritableRatingsFile(const std::filesystem::path& file,
                                                      Database& database);

/// Closes a damaged file and renames it, its write-ahead log with it. Answers the new name; an
/// empty one when another process has done so already.
Result<std::filesystem::path> setDamagedFileAside(const std::filesystem::path& file,
                                                  Patience& patience, Database database);

}  // namespace desktop
