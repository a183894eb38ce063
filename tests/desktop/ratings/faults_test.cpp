// The store when the disk fails, at each moment of everything that writes.
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <functional>
#include <optional>
#include <sstream>

#include "desktop/ratings/backups.h"
#include "desktop/ratings/exchange.h"
#include "tests/desktop/ratings/faulty_disk.h"
#include "tests/support/temporary_folder.h"

namespace desktop {
namespace {

namespace fs = std::filesystem;
using tests::contents;
using Fault = tests::FaultyDisk::Fault;

constexpr int confirmed = 200;

TrackIdentity track(int number) { return {.title = "Title " + std::to_string(number)}; }

class RatingsFaults : public testing::Test {
 protected:
  /// A store with the confirmed entries, made once.
  void makeStore() {
    fs::remove_all(file.parent_path());
    fs::create_directories(file.parent_path());
    if (sound.empty()) {
      RatingsStore store(file, messages);
      EXPECT_TRUE(importRatings(store, lines(0, confirmed)));
      sound = contents(file);
    }
    std::ofstream(file, std::ios::binary) << sound;
  }
  /// A file to import, with ratings of the tracks.
  std::string lines(int first, int end) const {
    const fs::path path = folder.path() / "lines";
    std::ofstream stream(path);
    for (int i = first; i < end; ++i) {
      stream << R"({"kind":"track","rating":40,"title":"Title )" << i << "\"}\n";
    }
    return path;
  }
  /// The confirmed entries that a widget finds.
  std::int64_t found() {
    std::int64_t count = 0;
    EXPECT_EQ(RatingsStore(file, messages).trackMarks(track(0)).rating.value_or(40), 40);
    Database database;
    database.open(file, SQLITE_OPEN_READWRITE);
    database.readInteger("SELECT count(*) FROM marks WHERE rating = 40", count);
    return count;
  }
  bool isSound() const {
    if (!fs::exists(file)) return true;
    Database database;
    Statement check;
    return database.open(file, SQLITE_OPEN_READWRITE) == SQLITE_OK &&
           check.prepare(database.handle(), "PRAGMA integrity_check") == SQLITE_OK &&
           check.step() == SQLITE_ROW && check.text(0) == "ok";
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
      RecordProperty(name, operation - 1);
    }
  }

  const std::function<bool()> click = [this] {
    return RatingsStore(file, messages).setTrackRating(clicked, 60);
  };
  const std::function<void(bool)> expectClicked = [this](bool isDone) {
    EXPECT_TRUE(!isDone || RatingsStore(file, messages).trackMarks(clicked).rating == 60);
  };

  tests::FaultyDisk disk;
  tests::TemporaryFolder folder;
  const fs::path file = folder.path() / "data/ratings.sqlite";
  std::ostringstream messages;
  std::string sound;
  const TrackIdentity clicked{.title = "clicked"};
};

TEST_F(RatingsFaults, ClicksImportsAndExports) {
  expectKept(
      "click", [&] { makeStore(); }, click, expectClicked);
  expectKept(
      "first click", [&] { fs::remove_all(file.parent_path()); }, click, expectClicked);
  expectKept(
      "import", [&] { makeStore(); },
      [&] {
        RatingsStore store(file, messages);
        return static_cast<bool>(importRatings(store, lines(confirmed, 2 * confirmed)));
      },
      [&](bool isDone) { EXPECT_TRUE(!isDone || found() == 2 * confirmed); });
  const fs::path exported = folder.path() / "exported";
  expectKept(
      "export",
      [&] {
        makeStore();
        std::ofstream(exported) << "last";
      },
      [&] {
        RatingsStore store(file, messages);
        return static_cast<bool>(exportRatings(store, exported));
      },
      [&](bool isDone) {
        const std::string text = contents(exported);
        EXPECT_EQ(isDone ? std::count(text.begin(), text.end(), '\n') : text == "last",
                  isDone ? confirmed : 1);
      });
}

TEST_F(RatingsFaults, BackupsAndRestores) {
  const auto date = [&] { return listOfBackups(file).substr(0, 10); };
  expectKept(
      "backup", [&] { makeStore(); },
      [&] {
        const auto made = backUpRatings(file, today());
        return made && *made;
      },
      [&](bool isDone) {
        EXPECT_EQ(backupDays(file).size(), isDone ? 1U : 0U);
        EXPECT_TRUE(!isDone || listOfBackups(file).ends_with("  200 entries\n"));
      });
  expectKept(
      "restore",
      [&] {
        makeStore();
        const fs::path backups = file.parent_path() / "ratings-backups",
                       kept = folder.path() / "kept";
        if (!fs::exists(kept)) {
          EXPECT_TRUE(backUpRatings(file, today()));
          fs::copy(backups, kept);
        }
        fs::remove_all(backups);
        fs::copy(kept, backups);
        EXPECT_TRUE(click());
      },
      [&] {
        RatingsStore store(file, messages);
        return static_cast<bool>(restoreRatings(store, date()));
      },
      [&](bool isDone) {
        const auto isIn = [&](const fs::path& store) {
          return RatingsStore(store, messages).trackMarks(clicked).rating == 60;
        };
        const fs::path kept = file.parent_path() / ("ratings-replaced-" + date() + "-1.sqlite");
        EXPECT_FALSE(isDone && isIn(file));
        EXPECT_TRUE(isIn(file) || isIn(kept)) << "a commit may be reported as failed at its end";
      });
}

TEST_F(RatingsFaults, MendingMovingAndComingFromAnEarlierVersion) {
  expectKept(
      "mending",
      [&] {
        makeStore();
        std::fstream stream(file, std::ios::in | std::ios::out | std::ios::binary);
        stream.seekp(4096) << std::string(4096, '\xFF');  // the root of the marks
      },
      click, expectClicked);

  std::optional<RatingsStore> open;
  expectKept(
      "carrying over",
      [&] {
        makeStore();
        open.emplace(file, messages);
        EXPECT_TRUE(open->setTrackRating(track(0), 40));
        fs::rename(file, folder.path() / "away");
      },
      [&] { return open->setTrackRating(clicked, 60); },
      [&](bool isDone) {
        EXPECT_EQ(open->trackMarks(track(confirmed - 1)).rating, 40);
        EXPECT_TRUE(!isDone || open->trackMarks(clicked).rating == 60);
        open.reset();
      });

  makeStore();
  const fs::path log = file.native() + "-wal";
  Database earlier;
  ASSERT_EQ(earlier.open(file, SQLITE_OPEN_READWRITE), SQLITE_OK);
  earlier.execute("PRAGMA journal_mode = WAL; UPDATE marks SET loved = 1");
  const std::string main = contents(file), logged = contents(log);
  earlier.close();
  expectKept(
      "earlier version",
      [&] {
        fs::remove_all(file.parent_path());
        fs::create_directories(file.parent_path());
        std::ofstream(file, std::ios::binary) << main;
        std::ofstream(log, std::ios::binary) << logged;
      },
      click,
      [&](bool isDone) {
        RatingsStore store(file, messages);
        EXPECT_EQ(store.trackMarks(track(7)), (Marks{.rating = 40, .loved = true}));
        EXPECT_TRUE(!isDone || store.trackMarks(clicked).rating == 60);
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
    const auto rating = RatingsStore(file, messages).trackMarks(track(0)).rating;
    EXPECT_TRUE(rating == answered || (isMet && rating == answered + 1))
        << operation << ": " << rating.value_or(-1) << " after " << answered;
    EXPECT_TRUE(isSound()) << operation;
    RecordProperty("power cuts", operation);
  }
}

}  // namespace
}  // namespace desktop
