// The ratings store among processes that are killed and that write at once.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <array>
#include <csignal>
#include <random>

#include "desktop/ratings/backups.h"
#include "desktop/ratings/exchange.h"
#include "tests/support/temporary_folder.h"

namespace desktop {
namespace {

constexpr int tracks = 37;

TrackIdentity track(int number) { return {.title = std::to_string(number)}; }

/// A widget in a process of its own, which clicks on tracks of its own in turn.
struct Widget {
  int first = 0;     // of its tracks
  int answered = 0;  // clicks, all as set
  pid_t process = 0;
  FileDescriptor answers = FileDescriptor();

  ~Widget() { kill(); }

  /// Two clicks on one track never set the same rating in a row.
  static int ratingOf(int click) { return click % 101; }

  void start(const std::filesystem::path& file) {
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe(ends.data()), 0);
    answers = FileDescriptor(ends[0]);
    const FileDescriptor input(ends[1]);
    process = ::fork();
    if (process != 0) return;
    std::ostringstream refusals;
    RatingsStore store(file, refusals);
    for (int click = answered;; ++click) {
      // A write that had to wait too long is refused, and clicked again.
      while (!store.setTrackRating(track(first + click % tracks), ratingOf(click))) {
      }
      const int number = click + 1;
      if (::write(input.get(), &number, sizeof number) != sizeof number) ::_exit(1);
    }
  }
  /// Hears of the next answer; false when the process has ended and all were heard of.
  bool hear() { return ::read(answers.get(), &answered, sizeof answered) == sizeof answered; }
  void kill() {
    if (process <= 0) return;
    ::kill(process, SIGKILL);
    ::waitpid(std::exchange(process, 0), nullptr, 0);
    while (hear()) {
    }
  }
  void expectClicksIn(RatingsStore& store) const {
    for (int number = 0; number < std::min(tracks, answered); ++number) {
      const int last = answered - 1 - (answered - 1 - number) % tracks;
      const auto rating = store.known(track(first + number)).track.rating;
      // The click under way when the process ended may be there or not.
      const bool isUnderWay = number == answered % tracks && rating == ratingOf(answered);
      EXPECT_TRUE(rating == ratingOf(last) || isUnderWay)
          << "track " << number << " after " << answered << ": " << rating.value_or(-1);
    }
  }
};

TEST(RatingsCrash, WhatWidgetsWereAnsweredIsThereAfterAKillAtAnyMomentBesideImportsAndARestore) {
  const tests::TemporaryFolder folder;
  const std::filesystem::path file = folder.path() / "data/ratings.sqlite";
  const unsigned seed = std::random_device()();
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 random(seed);
  std::array<Widget, 3> widgets{};
  for (int first = 0; Widget & widget : widgets) widget.first = tracks * first++;
  std::ostringstream refusals;
  RatingsStore store(file, refusals);
  int imported = 1000;
  const auto import = [&] {
    std::ofstream list(folder.path() / "list");
    for (int i = 0; i < 50; ++i) {
      list << R"({"kind":"track","rating":40,"title":")" << imported++ << "\"}\n";
    }
    list.close();
    while (!importRatings(store, folder.path() / "list")) {
    }
  };
  import();
  for (int round = 0; round < 8 && !testing::Test::HasFailure(); ++round) {
    for (Widget& widget : widgets) widget.start(file);
    Widget& awaited = widgets.at(random() % widgets.size());
    for (auto answers = 1 + random() % 40; answers > 0; --answers) awaited.hear();
    import();
    for (auto turns = random() % 5000; turns > 0; --turns) std::this_thread::yield();
    for (Widget& widget : widgets) widget.kill();
    RatingsStore other(file);
    for (RatingsStore* each : {&store, &other}) {
      for (const Widget& widget : widgets) widget.expectClicksIn(*each);
      for (int i = 1000; i < imported; ++i) EXPECT_EQ(each->known(track(i)).track.rating, 40) << i;
    }
  }
  const TrackIdentity clicked{.title = "after the backup"};
  ASSERT_TRUE(backUpRatings(file, today()));
  ASSERT_TRUE(store.setTrackRating(clicked, 60));
  for (Widget& widget : widgets) widget.start(file);
  for (Widget& widget : widgets) widget.hear();
  Result<std::string> restored = Problem{};
  while (!restored) restored = restoreRatings(store, listOfBackups(file).substr(0, 10));
  // Which of the two files the clicks of that moment are in is not told.
  for (Widget& widget : widgets) widget.kill();
  for (Widget& widget : widgets) widget.start(file);
  for (Widget& widget : widgets) {
    for (int answer = 0; answer <= tracks; ++answer) widget.hear();
  }
  for (Widget& widget : widgets) widget.kill();
  for (const Widget& widget : widgets) widget.expectClicksIn(store);
  EXPECT_EQ(store.known(clicked).track, Marks{});
  RatingsStore kept(restored->substr(restored->find(" as ") + 4));
  EXPECT_EQ(kept.known(clicked).track.rating, 60);
}

}  // namespace
}  // namespace desktop
