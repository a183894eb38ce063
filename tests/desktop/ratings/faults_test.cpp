// The store when the disk fails, at each moment of everything that writes.
#include "tests/desktop/ratings/faulty_disk.h"
#include "tests/desktop/ratings/ratings_fixture.h"

namespace desktop {
namespace {

using tests::faulty::Fault;

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

  tests::faulty::Disk disk;
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
        EXPECT_EQ(RatingsStore(file, messages).trackMarks(track(7)),
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
