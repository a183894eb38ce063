#include "desktop/ratings/backups.h"

#include "tests/desktop/ratings/ratings_fixture.h"

namespace desktop {
namespace {

using std::chrono::days;

const TrackIdentity song{.title = "song"}, other{.title = "other"};
const Day first = std::chrono::year(2026) / 1 / 5;  // a Monday

struct RatingsBackups : RatingsFixture {
  /// A click, then the day's check.
  bool clickOn(Day day, int rating) {
    EXPECT_TRUE(store.setTrackRating(song, rating));
    // Two clicks may fall into one tick of the file system's clock.
    fs::last_write_time(file, fs::file_time_type::clock::now() + std::chrono::seconds(++clicks));
    const auto made = backUpRatings(file, day);
    EXPECT_TRUE(made) << made.problem().text;
    return made && *made;
  }
  fs::path backup(const std::string& date) const {
    return file.parent_path() / "ratings-backups" / (date + ".jsonl.gz");
  }
  void damage(const char* date) const { fs::resize_file(backup(date), size(date) - 9); }
  std::uintmax_t size(const char* date) const { return fs::file_size(backup(date)); }

  RatingsStore store{file, messages};
  int clicks = 0;
};

TEST_F(RatingsBackups, OneIsMadeOnADayWithChangesAndTheOldOnesThinOut) {
  EXPECT_FALSE(*backUpRatings(file, first));
  EXPECT_FALSE(fs::exists(file)) << "looking made a store";
  EXPECT_TRUE(clickOn(first, 1));
  EXPECT_FALSE(clickOn(first, 2)) << "the second of a day";
  EXPECT_TRUE(*backUpRatings(file, first + days(1))) << "changed after the last";
  EXPECT_FALSE(*backUpRatings(file, first + days(2))) << "nothing changed";
  constexpr int last = 100;
  for (int day = 3; day <= last; ++day) EXPECT_TRUE(clickOn(first + days(day), day));
  const auto kept = backupDays(file);
  const auto younger = [&](int age) {
    return std::ranges::count_if(kept,
                                 [&](Day day) { return first + days(last) - day < days(age); });
  };
  EXPECT_EQ(younger(7), 7);
  EXPECT_GE(younger(35), 7 + 4);
  EXPECT_LE(younger(35), 7 + 5) << "four weeks begin in the middle of one";
  EXPECT_EQ(std::ssize(kept) - younger(35), 3) << "January, February, March";
  EXPECT_EQ(kept.front(), first);
  EXPECT_EQ(fs::status(backup("2026-01-05")).permissions(), fs::perms(0600));
}

TEST_F(RatingsBackups, ARestoreIsSeenByAllAndWhatItReplacesIsKept) {
  clickOn(first, 40);
  ASSERT_TRUE(store.setTrackRating(song, 80));
  ASSERT_TRUE(store.setTrackLoved(other, true));
  RatingsStore running(file, messages);
  EXPECT_EQ(running.known(song).track.rating, 80);
  for (int again = 0; again < 2; ++again) {
    const auto report = restoreRatings(store, "2026-01-05");
    ASSERT_TRUE(report) << report.problem().text;
    EXPECT_EQ(running.known(song).track.rating, 40);
    EXPECT_EQ(running.known(other).track, Marks{});
    RatingsStore kept(report->substr(report->find(" as ") + 4), messages);
    EXPECT_EQ(kept.known(song).track.rating, again == 0 ? 80 : 40);
    EXPECT_EQ(kept.known(other).track.loved.has_value(), again == 0);
  }
  for (const char* wrong : {"2026-01-06", "2026-02-30", "yesterday", "", "../ratings"}) {
    const auto report = restoreRatings(store, wrong);
    ASSERT_FALSE(report) << wrong;
    EXPECT_NE(report.problem().text.find(std::string(wrong)), std::string::npos);
    EXPECT_TRUE(report.problem().text.ends_with("; there are those of 2026-01-05"));
  }
  EXPECT_EQ(messages.str(), "");
}

TEST_F(RatingsBackups, ABrokenOneIsNeverRestoredAndDisplacesNone) {
  for (int day = 0; day < 3; ++day) clickOn(first + days(day), 20 + day);
  damage("2026-01-06");
  EXPECT_FALSE(restoreRatings(store, "2026-01-06"));
  EXPECT_EQ(rating(song), 22);
  const std::string list = listOfBackups(file);
  EXPECT_TRUE(list.starts_with("2026-01-07  1 entry\n2026-01-06  cannot be used: ")) << list;
  EXPECT_TRUE(list.ends_with("2026-01-05  1 entry\n")) << list;
  clickOn(first + days(20), 60);
  EXPECT_EQ(backupDays(file), (std::vector<Day>{first, first + days(20)}));

  const std::string before = listOfBackups(file);
  put(file, "damaged");
  EXPECT_FALSE(backUpRatings(file, first + days(30)));
  EXPECT_EQ(listOfBackups(file), before);
  EXPECT_FALSE(fs::exists(file.parent_path() / "ratings-backups/unfinished"));
  ASSERT_TRUE(restoreRatings(store, "2026-01-05")) << "also over a damaged store";
  EXPECT_EQ(rating(song), 20);
}

TEST_F(RatingsBackups, EachHasEverythingThoughItTellsOnlyWhatDiffersFromAnEarlierOne) {
  const TrackIdentity unnamed{.title = "unnamed"}, album{.artist = "A", .album = "B"};
  ASSERT_TRUE(importRatings(store, listOf(0, 500)));
  ASSERT_TRUE(store.setTrackRating(other, 30));
  ASSERT_TRUE(store.setAlbumRating(album, 90));
  ASSERT_TRUE(store.setTrackRating(unnamed, 44));
  inStore(
      "DELETE FROM names WHERE title = 'unnamed';"
      "UPDATE marks SET digest = zeroblob(16) WHERE digest ="
      " (SELECT digest FROM names WHERE title = '1');"
      "UPDATE names SET digest = zeroblob(16) WHERE title = '1'");
  clickOn(first, 10);
  inStore("DELETE FROM marks WHERE rating = 30; UPDATE marks SET rating = 45 WHERE rating = 44");
  ASSERT_TRUE(store.setAlbumRating(album, 20));
  clickOn(first + days(1), 50);
  EXPECT_LT(4 * size("2026-01-06"), size("2026-01-05"));
  using Ratings = std::vector<int>;
  const auto ratings = [&] {
    return Ratings{rating(song), store.known(album).album.rating.value_or(-1), rating(unnamed),
                   rating(other), rating({.title = "499"})};
  };
  for (int again = 0; again < 2; ++again) {
    ASSERT_TRUE(restoreRatings(store, "2026-01-05"));
    EXPECT_EQ(ratings(), (Ratings{10, 90, 44, 30, 40}));
    ASSERT_TRUE(restoreRatings(store, "2026-01-06"));
    EXPECT_EQ(ratings(), (Ratings{50, 20, 45, -1, 40}));
    EXPECT_EQ(selected("SELECT rating FROM marks WHERE digest = zeroblob(16)"), 40)
        << "kept under another digest";
  }
  clickOn(first + days(14), 70);
  EXPECT_EQ(backupDays(file).front(), first) << "others build on it";
  inStore("UPDATE marks SET rating = 77");
  clickOn(first + days(15), 60);
  damage("2026-01-05");
  const std::string list = listOfBackups(file);
  EXPECT_TRUE(list.starts_with("2026-01-20  503 entries\n2026-01-19  cannot be used: 2026-01-05"))
      << list;
  EXPECT_FALSE(restoreRatings(store, "2026-01-19"));
  EXPECT_TRUE(restoreRatings(store, "2026-01-20")) << "one that differs much stands for itself";
  EXPECT_EQ(rating(song), 60);
}

}  // namespace
}  // namespace desktop
