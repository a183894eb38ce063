#include "tests/desktop/ratings/faulty_disk.h"

#include <sqlite3.h>

#include <cstring>
#include <fstream>

#include "tests/support/temporary_folder.h"

namespace tests {

namespace {

using Fault = FaultyDisk::Fault;

struct State {
  sqlite3_vfs* real = nullptr;
  sqlite3_vfs faulty{};
  int operation = 0;
  int failing = 0;  // none when 0
  Fault fault = Fault::inputOutput;
  std::map<std::string, std::string> synchronised;  // contents by path
};
State state;

/// SQLITE_OK, or what the operation fails with.
int next(int failure) {
  ++state.operation;
  if (state.failing == 0 || state.operation < state.failing) return SQLITE_OK;
  if (state.fault == Fault::inputOutput && state.operation > state.failing) return SQLITE_OK;
  return state.fault == Fault::full && failure == SQLITE_IOERR_WRITE ? SQLITE_FULL : failure;
}

struct File : sqlite3_file {
  const char* path;
  sqlite3_file* real() { return reinterpret_cast<sqlite3_file*>(this + 1); }
};
File* file(sqlite3_file* opened) { return static_cast<File*>(opened); }

// Calls of the same name of the file behind.
template <auto method, class... Arguments>
auto pass(sqlite3_file* opened, Arguments... arguments) {
  sqlite3_file* real = file(opened)->real();
  return (real->pMethods->*method)(real, arguments...);
}

int writeFile(sqlite3_file* opened, const void* bytes, int length, sqlite3_int64 offset) {
  const int result = next(SQLITE_IOERR_WRITE);
  return result != SQLITE_OK ? result
                             : pass<&sqlite3_io_methods::xWrite>(opened, bytes, length, offset);
}
int truncateFile(sqlite3_file* opened, sqlite3_int64 length) {
  const int result = next(SQLITE_IOERR_TRUNCATE);
  return result != SQLITE_OK ? result : pass<&sqlite3_io_methods::xTruncate>(opened, length);
}
int synchroniseFile(sqlite3_file* opened, int) {
  const int result = next(SQLITE_IOERR_FSYNC);
  const char* path = file(opened)->path;
  if (result == SQLITE_OK && path != nullptr) state.synchronised[path] = contents(path);
  return result;
}

const sqlite3_io_methods methods = {
    .iVersion = 2,
    .xClose = &pass<&sqlite3_io_methods::xClose>,
    .xRead = &pass<&sqlite3_io_methods::xRead, void*, int, sqlite3_int64>,
    .xWrite = &writeFile,
    .xTruncate = &truncateFile,
    .xSync = &synchroniseFile,
    .xFileSize = &pass<&sqlite3_io_methods::xFileSize, sqlite3_int64*>,
    .xLock = &pass<&sqlite3_io_methods::xLock, int>,
    .xUnlock = &pass<&sqlite3_io_methods::xUnlock, int>,
    .xCheckReservedLock = &pass<&sqlite3_io_methods::xCheckReservedLock, int*>,
    .xFileControl = &pass<&sqlite3_io_methods::xFileControl, int, void*>,
    .xSectorSize = &pass<&sqlite3_io_methods::xSectorSize>,
    .xDeviceCharacteristics = &pass<&sqlite3_io_methods::xDeviceCharacteristics>,
    .xShmMap = &pass<&sqlite3_io_methods::xShmMap, int, int, int, void volatile**>,
    .xShmLock = &pass<&sqlite3_io_methods::xShmLock, int, int, int>,
    .xShmBarrier = &pass<&sqlite3_io_methods::xShmBarrier>,
    .xShmUnmap = &pass<&sqlite3_io_methods::xShmUnmap, int>,
    .xFetch = nullptr,
    .xUnfetch = nullptr};

int openFile(sqlite3_vfs*, const char* path, sqlite3_file* opened, int flags, int* outFlags) {
  opened->pMethods = nullptr;
  if (const int result = next(SQLITE_CANTOPEN); result != SQLITE_OK) return result;
  file(opened)->path = path;
  if (path != nullptr) state.synchronised.try_emplace(path, contents(path));
  const int result = state.real->xOpen(state.real, path, file(opened)->real(), flags, outFlags);
  if (result == SQLITE_OK) opened->pMethods = &methods;
  return result;
}
int removeFile(sqlite3_vfs*, const char* path, int synchronises) {
  const int result = next(SQLITE_IOERR_DELETE);
  return result != SQLITE_OK ? result : state.real->xDelete(state.real, path, synchronises);
}

}  // namespace

FaultyDisk::FaultyDisk() {
  state = {};
  state.real = sqlite3_vfs_find(nullptr);
  state.faulty = *state.real;
  state.faulty.zName = "faulty";
  state.faulty.szOsFile = static_cast<int>(sizeof(File)) + state.real->szOsFile;
  state.faulty.xOpen = &openFile;
  state.faulty.xDelete = &removeFile;
  sqlite3_vfs_register(&state.faulty, 1);
}

FaultyDisk::~FaultyDisk() {
  sqlite3_vfs_register(state.real, 1);
  sqlite3_vfs_unregister(&state.faulty);
}

void FaultyDisk::failAt(int operation, Fault fault) {
  state.operation = 0;
  state.failing = operation;
  state.fault = fault;
}

bool FaultyDisk::heal() {
  const bool isMet = state.operation >= state.failing;
  state.failing = 0;
  return isMet;
}

void FaultyDisk::loseWhatWasNotSynchronised() const {
  for (const auto& [path, bytes] : state.synchronised) {
    std::ofstream(path, std::ios::binary | std::ios::trunc) << bytes;
  }
}

}  // namespace tests
