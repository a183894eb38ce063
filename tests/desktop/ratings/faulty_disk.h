// SQLite's own file layer with faults at chosen moments.
#pragma once

#include <sqlite3.h>

#include "tests/support/temporary_folder.h"

namespace tests::faulty {

enum class Fault {
  inputOutput,  ///< one operation fails
  full,         ///< from one operation on nothing can be written
  powerCut      ///< from one operation on nothing can be done
};

struct State {
  sqlite3_vfs* real = nullptr;
  sqlite3_vfs faulty{};
  std::map<const sqlite3_io_methods*, sqlite3_io_methods> methods;  // by the real ones
  std::map<sqlite3_file*, std::pair<const sqlite3_io_methods*, std::string>> files;
  std::map<std::string, std::string> synchronised;  // contents by path
  int operation = 0;
  int failing = 0;  // none when 0
  Fault fault = Fault::inputOutput;
};
inline State state;

/// SQLITE_OK, or what the operation fails with.
inline int next(int failure) {
  ++state.operation;
  if (state.failing == 0 || state.operation < state.failing) return SQLITE_OK;
  if (state.fault == Fault::inputOutput && state.operation > state.failing) return SQLITE_OK;
  return state.fault == Fault::full && failure == SQLITE_IOERR_WRITE ? SQLITE_FULL : failure;
}

inline int writeFile(sqlite3_file* file, const void* bytes, int length, sqlite3_int64 offset) {
  const int result = next(SQLITE_IOERR_WRITE);
  return result != SQLITE_OK ? result
                             : state.files[file].first->xWrite(file, bytes, length, offset);
}
inline int truncateFile(sqlite3_file* file, sqlite3_int64 length) {
  const int result = next(SQLITE_IOERR_TRUNCATE);
  return result != SQLITE_OK ? result : state.files[file].first->xTruncate(file, length);
}
inline int synchroniseFile(sqlite3_file* file, int) {
  const int result = next(SQLITE_IOERR_FSYNC);
  const std::string& path = state.files[file].second;
  if (result == SQLITE_OK && !path.empty()) state.synchronised[path] = contents(path);
  return result;
}
inline int openFile(sqlite3_vfs*, const char* path, sqlite3_file* file, int flags, int* outFlags) {
  file->pMethods = nullptr;
  if (const int result = next(SQLITE_CANTOPEN); result != SQLITE_OK) return result;
  if (path != nullptr) state.synchronised.try_emplace(path, contents(path));
  const int result = state.real->xOpen(state.real, path, file, flags, outFlags);
  if (result != SQLITE_OK) return result;
  state.files[file] = {file->pMethods, path != nullptr ? path : ""};
  sqlite3_io_methods& methods = state.methods[file->pMethods] = *file->pMethods;
  methods.xWrite = &writeFile;
  methods.xTruncate = &truncateFile;
  methods.xSync = &synchroniseFile;
  methods.iVersion = std::min(methods.iVersion, 2);  // without memory maps
  file->pMethods = &methods;
  return SQLITE_OK;
}
inline int removeFile(sqlite3_vfs*, const char* path, int synchronises) {
  const int result = next(SQLITE_IOERR_DELETE);
  return result != SQLITE_OK ? result : state.real->xDelete(state.real, path, synchronises);
}

/// The layer that databases are opened with while this lives; one at a time. What is synchronised
/// is noted and not waited for.
class Disk {
 public:
  Disk() {
    state = {};
    state.real = sqlite3_vfs_find(nullptr);
    state.faulty = *state.real;
    state.faulty.zName = "faulty";
    state.faulty.xOpen = &openFile;
    state.faulty.xDelete = &removeFile;
    sqlite3_vfs_register(&state.faulty, 1);
  }
  ~Disk() {
    sqlite3_vfs_register(state.real, 1);
    sqlite3_vfs_unregister(&state.faulty);
  }

  /// Has the n-th operation from now on fail that opens, writes, synchronises, cuts or removes.
  void failAt(int operation, Fault fault) {
    state.operation = 0;
    state.failing = operation;
    state.fault = fault;
  }
  /// Ends the faults; true when one was met since.
  bool heal() { return state.operation >= std::exchange(state.failing, 0); }
  /// Brings all files back to what was synchronised last.
  void loseWhatWasNotSynchronised() const {
    for (const auto& [path, bytes] : state.synchronised) {
      std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
    }
  }
};

}  // namespace tests::faulty
