// The store when the disk fails, at each moment of everything that writes.
#include <sqlite3.h>

#include "tests/desktop/ratings/ratings_fixture.h"

namespace desktop {
namespace {

// SQLite's own file layer with faults at chosen moments.

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
State state;

/// SQLITE_OK, or what the operation fails with.
int next(int failure) {
  ++state.operation;
  if (state.failing == 0 || state.operation < state.failing) return SQLITE_OK;
  if (state.fault == Fault::inputOutput && state.operation > state.failing) return SQLITE_OK;
  return state.fault == Fault::full && failure == SQLITE_IOERR_WRITE ? SQLITE_FULL : failure;
}

int writeFile(sqlite3_file* file, const void* bytes, int length, sqlite3_int64 offset) {
  const int result = next(SQLITE_IOERR_WRITE);
  return result != SQLITE_OK ? result
                             : state.files[file].first->xWrite(file, bytes, length, offset);
}
int truncateFile(sqlite3_file* file, sqlite3_int64 length) {
  const int result = next(SQLITE_IOERR_TRUNCATE);
  return result != SQLITE_OK ? result : state.files[file].first->xTruncate(file, length);
}
int synchroniseFile(sqlite3_file* file, int) {
  const int result = next(SQLITE_IOERR_FSYNC);
  const std::string& path = state.files[file].second;
  if (result == SQLITE_OK && !path.empty()) state.synchronised[path] = contents(path);
  return result;
}
int openFile(sqlite3_vfs*, const char* path, sqlite3_file* file, int flags, int* outFlags) {
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
int removeFile(sqlite3_vfs*, const char* path, int synchronises) {
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

constexpr int confirmed = 200;

TrackIdentity track(int number) { return {.title = std::to_string(number)}; }

struct RatingsFaults : RatingsFixture {
  /// A store with the confirmed entries, made once.
  void makeStore() {
    fs::remove_all(file.parent_path());
    if (sound.empty()) {
      RatingsStore store(file, messages);
      EXPECT_TRUE(importRatings(store, listOf(0, confirmed)));
      sound = contents(file);
    }
    put(file, sound);
  }
  /// The confirmed entries that a widget finds.
  std::int64_t found() {
    EXPECT_TRUE(rating(track(0)) == 40 || rating(track(0)) == -1);
    return std::max<std::int64_t>(selected("SELECT count(*) FROM marks WHERE rating = 40"), 0);
  }
  /// Has every operation of the run fail in its turn, and expects as many entries afterwards as
  /// are there without a fault.
  void expectKept(const char* name, const std::function<void()>& prepare,
                  const std::function<bool()>& run, const std::function<void(bool)>& check) {
    std::int64_t expected = 0;
    for (const Fault fault : {Fault::inputOutput, Fault::full, Fault::powerCut}) {
      bool isMet = true;
      int operation = fault == Fault::inputOutput ? 0 : 1;  // none fails at first
      for (; isMet; ++operation) {
        SCOPED_TRACE(name + std::string(", operation ") + std::to_string(operation) + ", fault " +
                     std::to_string(static_cast<int>(fault)));
        prepare();
        disk.failAt(operation, fault);
        const bool isDone = run();
        isMet = disk.heal();
        EXPECT_TRUE(isDone || isMet);
        check(isDone);
        const std::int64_t count = found();
        if (operation == 0) expected = std::min<std::int64_t>(count, confirmed);
        EXPECT_GE(count, expected);
        EXPECT_TRUE(isSound());
        if (HasFailure()) return;
        if (operation == 0) isMet = true;
      }
    }
  }

  const std::function<void()> begin = [this] { makeStore(); };
  const std::function<bool()> click = [this] { return rate(clicked, 60); };
  const std::function<void(bool)> expectClicked = [this](bool isDone) {
    EXPECT_TRUE(!isDone || rating(clicked) == 60);
  };

  Disk disk;
  std::string sound;
  const TrackIdentity clicked{.title = "clicked"};
};

TEST_F(RatingsFaults, ClicksImportsAndExports) {
  expectKept("click", begin, click, expectClicked);
  expectKept(
      "first click", [&] { fs::remove_all(file.parent_path()); }, click, expectClicked);
  const auto import = [&] {
    RatingsStore store(file, messages);
    return static_cast<bool>(importRatings(store, listOf(confirmed, 2 * confirmed)));
  };
  expectKept("import", begin, import,
             [&](bool isDone) { EXPECT_TRUE(!isDone || found() == 2 * confirmed); });
  const fs::path exported = folder.path() / "exported";
  expectKept(
      "export", [&] { makeStore(), put(exported, "last"); },
      [&] {
        RatingsStore store(file, messages);
        return static_cast<bool>(exportRatings(store, exported));
      },
      [&](bool isDone) {
        const std::string text = contents(exported);
        EXPECT_TRUE(isDone ? std::ranges::count(text, '\n') == confirmed : text == "last");
      });
}

TEST_F(RatingsFaults, MendingAndComingFromAnEarlierVersion) {
  const auto damage = [&] {
    makeStore();
    overwrite(file, 4096, std::string(4096, '\xFF'));  // the root of the marks
  };
  expectKept("mending", damage, click, expectClicked);

  makeStore();
  const fs::path log = file.native() + "-wal";
  Database earlier = opened(file);
  earlier.execute("PRAGMA journal_mode = WAL; UPDATE marks SET loved = 1");
  const std::string main = contents(file), logged = contents(log);
  earlier.close();
  expectKept(
      "earlier version",
      [&] {
        fs::remove_all(file.parent_path());
        put(file, main);
        put(log, logged);
      },
      click,
      [&](bool isDone) {
        expectClicked(isDone);
        EXPECT_EQ(RatingsStore(file, messages).known(track(7)).track,
                  (Marks{.rating = 40, .loved = true}));
      });
}

TEST_F(RatingsFaults, PowerCutsUndoNothingThatWasAnswered) {
  makeStore();
  for (int operation = 1, isMet = true; isMet; ++operation) {
    int answered = 40;
    {
      RatingsStore store(file, messages);
      ASSERT_TRUE(store.setTrackRating(track(0), 40));
      disk.failAt(operation, Fault::powerCut);
      for (int rating = 41; rating < 44 && store.setTrackRating(track(0), rating); ++rating) {
        answered = rating;
      }
      disk.loseWhatWasNotSynchronised();
    }
    isMet = disk.heal();
    disk.loseWhatWasNotSynchronised();
    const int found = rating(track(0));
    EXPECT_TRUE(found == answered || (isMet && found == answered + 1))
        << operation << ": " << found << " after " << answered;
    EXPECT_TRUE(isSound()) << operation;
  }
}

}  // namespace
}  // namespace desktop
