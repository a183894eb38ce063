// The ratings store among processes that are killed and that write at once.
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <functional>
#include <optional>
#include <random>
#include <string>
#include <thread>

#include "desktop/files/file_descriptor.h"
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

constexpr int clicks = 1000;
constexpr int tracks = 37;

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

TEST(RatingsCrash, WhatWasAnsweredAsSetIsThereAfterAKillAtAnyMoment) {
  const tests::TemporaryFolder folder;
  const std::filesystem::path file = folder.path() / "ratings.sqlite";
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  int done = 0;  // the first clicks, all answered as set
  while (done < clicks) {
    Child widget([&](const Child::Report& report) {
      RatingsStore store(file);
      for (int click = done; click < clicks; ++click) {
        if (!store.setTrackRating(track(click % tracks), ratingOfClick(click))) return;
        report(click + 1);
      }
    });
    const int before = done;
    const int until = done + std::uniform_int_distribution(1, 60)(random);
    while (done < until) {
      const auto reported = widget.next();
      if (!reported) break;
      done = *reported;
    }
    for (auto turns = random() % 5000; turns > 0; --turns) std::this_thread::yield();
    widget.kill();
    while (const auto reported = widget.next()) done = *reported;
    ASSERT_GT(done, before) << "no write was answered as set";

    RatingsStore store(file);
    for (int number = 0; number < std::min(tracks, done); ++number) {
      const int last = done - 1 - (done - 1 - number) % tracks;
      const auto rating = store.trackMarks(track(number)).rating;
      // The click under way when the process ended may be there or not.
      const bool isUnderWay = number == done % tracks && rating == ratingOfClick(done);
      EXPECT_TRUE(rating == ratingOfClick(last) || isUnderWay)
          << "track " << number << " after " << done << " clicks: " << rating.value_or(-1);
    }
    EXPECT_TRUE(hasIntegrity(file));
  }
}

TEST(RatingsCrash, TwoWidgetsWriteAtOnceAndLoseNothing) {
  const tests::TemporaryFolder folder;
  const std::filesystem::path file = folder.path() / "data/ratings.sqlite";
  constexpr int each = 200;
  const auto widget = [&](int first) {
    return [&file, first](const Child::Report&) {
      RatingsStore store(file);
      for (int click = first; click < first + each; ++click) {
        // A write that had to wait too long is refused, and clicked again.
        while (!store.setTrackRating(track(click), ratingOfClick(click))) {
        }
      }
    };
  };
  {
    const Child one(widget(0)), other(widget(each));
    EXPECT_FALSE(one.next() || other.next()) << "until both have ended";
  }
  RatingsStore store(file);
  for (int click = 0; click < 2 * each; ++click) {
    EXPECT_EQ(store.trackMarks(track(click)).rating, ratingOfClick(click));
  }
  EXPECT_TRUE(hasIntegrity(file));
}

}  // namespace
}  // namespace desktop
