// The ratings store among processes that are killed and that write at once.
#include <gtest/gtest.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <functional>
#include <optional>
#include <random>
#include <sstream>
#include <string>
#include <thread>

#include "desktop/files/file_descriptor.h"
#include "desktop/ratings/backups.h"
#include "desktop/ratings/sqlite.h"
#include "desktop/ratings/store.h"
#include "tests/support/temporary_folder.h"

namespace desktop {
namespace {

/// A process of its own that reports numbers; killed at the latest with this object.
class Child {
 public:
  using Report = std::function<void(int)>;

  explicit Child(const std::function<void(const Report&)>& work) {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0) return;
    output_ = FileDescriptor(ends[0]);
    const FileDescriptor input(ends[1]);
    process_ = ::fork();
    if (process_ != 0) return;
    work([&input](int number) {
      if (::write(input.get(), &number, sizeof number) != sizeof number) ::_exit(1);
    });
    ::_exit(0);
  }
  ~Child() { kill(); }
  Child(const Child&) = delete;
  Child& operator=(const Child&) = delete;

  /// Waits for the next number; none when the process has ended and all were read.
  std::optional<int> next() const {
    int number = 0;
    return ::read(output_.get(), &number, sizeof number) == sizeof number ? std::optional(number)
                                                                          : std::nullopt;
  }
  /// How many numbers have been reported and not been read.
  int unread() const {
    int bytes = 0;
    ::ioctl(output_.get(), FIONREAD, &bytes);
    return bytes / static_cast<int>(sizeof(int));
  }
  void kill() {
    if (process_ <= 0) return;
    ::kill(process_, SIGKILL);
    ::waitpid(process_, nullptr, 0);
    process_ = 0;
  }

 private:
  FileDescriptor output_;
  pid_t process_ = 0;
};

constexpr int tracks = 37;

/// Clicks of all widgets together; more when somebody asks for a long run.
int clicks() {
  const char* wanted = std::getenv("VIRELUNE_CRASH_CLICKS");
  return wanted != nullptr ? std::atoi(wanted) : 200;
}

TrackIdentity track(int number) {
  return {.address = "/music/" + std::to_string(number) + ".flac", .title = "Title"};
}

/// Two clicks on one track never set the same rating in a row.
int ratingOfClick(int click) { return click % 101; }

bool hasIntegrity(const std::filesystem::path& file) {
  Database database;
  Statement check;
  return database.open(file, SQLITE_OPEN_READWRITE) == SQLITE_OK &&
         check.prepare(database.handle(), "PRAGMA integrity_check") == SQLITE_OK &&
         check.step() == SQLITE_ROW && check.text(0) == "ok";
}

/// A widget with tracks of its own that clicks them in turn, as often as it is started again.
struct Widget {
  int first = 0;  // of its tracks
  int done = 0;   // clicks, all answered as set
  std::optional<Child> process = std::nullopt;

  void start(const std::filesystem::path& file) {
    process.emplace([this, &file](const Child::Report& report) {
      std::ostringstream refusals;
      RatingsStore store(file, refusals);
      for (int click = done;; ++click) {
        // A write that had to wait too long is refused, and clicked again.
        while (!store.setTrackRating(track(first + click % tracks), ratingOfClick(click))) {
        }
        report(click + 1);
      }
    });
  }
  void noteReports() {
    while (const auto reported = process->next()) done = *reported;
  }
  void expectClicksIn(RatingsStore& store) const {
    for (int number = 0; number < std::min(tracks, done); ++number) {
      const int last = done - 1 - (done - 1 - number) % tracks;
      const auto rating = store.trackMarks(track(first + number)).rating;
      // The click under way when the process ended may be there or not.
      const bool isUnderWay = number == done % tracks && rating == ratingOfClick(done);
      EXPECT_TRUE(rating == ratingOfClick(last) || isUnderWay)
          << "track " << number << " after " << done << " clicks: " << rating.value_or(-1);
    }
  }
};

TEST(RatingsCrash, WhatThreeWidgetsWereAnsweredIsThereAfterAKillAtAnyMoment) {
  const tests::TemporaryFolder folder;
  const std::filesystem::path file = folder.path() / "data/ratings.sqlite";
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  std::array<Widget, 3> widgets;
  for (int i = 0; i < 3; ++i) widgets.at(static_cast<std::size_t>(i)).first = i * tracks;
  const auto done = [&] { return widgets[0].done + widgets[1].done + widgets[2].done; };
  int kills = 0;
  for (; done() < clicks() && !testing::Test::HasFailure(); kills += 3) {
    for (Widget& widget : widgets) widget.start(file);
    Widget& awaited = widgets.at(random() % widgets.size());
    for (auto reports = 1 + random() % 40; reports > 0; --reports) {
      awaited.done = awaited.process->next().value_or(awaited.done);
    }
    for (auto turns = random() % 5000; turns > 0; --turns) std::this_thread::yield();
    for (Widget& widget : widgets) widget.process->kill();
    for (Widget& widget : widgets) widget.noteReports();
    RatingsStore one(file), other(file);
    for (const Widget& widget : widgets) {
      widget.expectClicksIn(one);
      widget.expectClicksIn(other);
    }
    EXPECT_TRUE(hasIntegrity(file));
  }
  RecordProperty("clicks", done());
  RecordProperty("kills", kills);
}

TEST(RatingsCrash, ImportsAndARestoreBesideClickingWidgetsLoseNothing) {
  const tests::TemporaryFolder folder;
  const std::filesystem::path file = folder.path() / "ratings.sqlite";
  const TrackIdentity clickedOnce{.title = "clicked once"};
  std::array<Widget, 2> widgets{Widget{.first = 0}, Widget{.first = tracks}};
  std::ostringstream refusals;
  RatingsStore store(file, refusals);
  const auto import = [&](int from) {
    EntryCollection entries;
    MergeCounts counts;
    ASSERT_EQ(entries.makeEmpty(), SQLITE_OK);
    for (int i = from; i < from + 50; ++i) {
      entries.add({.identity = track(i), .marks = {.rating = 40}}, counts);
    }
    while (!store.merge(entries)) {
    }
  };
  /// Waits until the widgets have clicked so often after what they have by now.
  const auto awaitClicks = [&](int more) {
    for (Widget& widget : widgets) {
      const int present = widget.done + widget.process->unread();
      while (widget.done < present + more) {
        widget.done = widget.process->next().value_or(present + more);
      }
    }
  };
  import(1000);
  ASSERT_TRUE(backUpRatings(file, today()));
  ASSERT_TRUE(store.setTrackRating(clickedOnce, 60));
  for (Widget& widget : widgets) widget.start(file);
  awaitClicks(tracks);
  Result<std::string> restored = Problem{};
  while (!restored) restored = restoreRatings(store, listOfBackups(file).substr(0, 10));
  // Which of the two files the clicks of that moment are in is not told.
  awaitClicks(tracks + 1);
  for (int each = 1; each < 10; ++each) {
    import(1000 + each * 50);
    awaitClicks(1);
  }
  for (Widget& widget : widgets) widget.process->kill();
  for (Widget& widget : widgets) widget.noteReports();
  RatingsStore other(file);
  for (RatingsStore* each : {&store, &other}) {
    for (const Widget& widget : widgets) widget.expectClicksIn(*each);
    for (int i = 1000; i < 1500; ++i) EXPECT_EQ(each->trackMarks(track(i)).rating, 40) << i;
    EXPECT_EQ(each->trackMarks(clickedOnce), Marks{});
  }
  RatingsStore kept(restored->substr(restored->find(" as ") + 4));
  EXPECT_EQ(kept.trackMarks(clickedOnce).rating, 60);
  for (int i = 0; i < 2 * tracks; ++i) EXPECT_TRUE(kept.trackMarks(track(i)).rating) << i;
  EXPECT_TRUE(hasIntegrity(file));
}

}  // namespace
}  // namespace desktop
