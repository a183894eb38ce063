#include "desktop/ratings/backups.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <sstream>

#include "tests/support/temporary_folder.h"

namespace desktop {
namespace {

namespace fs = std::filesystem;
using std::chrono::days;

const TrackIdentity song{.title = "song"}, other{.title = "other"};
const Day first = std::chrono::year(2026) / 1 / 5;  // a Monday

class RatingsBackups : public testing::Test {
 protected:
  /// A click, then the day's check.
  bool clickOn(Day day, int rating) {
    EXPECT_TRUE(store.setTrackRating(song, rating));
    // Two clicks may fall into one tick of the file system's clock.
    fs::last_write_time(file, fs::file_time_type::clock::now() + std::chrono::seconds(++clicks));
    const auto made = backUpRatings(file, day);
    EXPECT_TRUE(made) << made.problem().text;
    return made && *made;
  }
  fs::path backup(const char* date) const { return folder.path() / "ratings-backups" / date; }
  static void damage(const fs::path& path) { fs::resize_file(path, fs::file_size(path) - 4096); }

  tests::TemporaryFolder folder;
  const fs::path file = folder.path() / "ratings.sqlite";
  std::ostringstream messages;
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
    return std::count_if(kept.begin(), kept.end(),
                         [&](Day day) { return first + days(last) - day < days(age); });
  };
  EXPECT_EQ(younger(7), 7);
  EXPECT_GE(younger(35), 7 + 4);
  EXPECT_LE(younger(35), 7 + 5) << "four weeks begin in the middle of one";
  EXPECT_EQ(std::ssize(kept) - younger(35), 3) << "January, February, March";
  EXPECT_EQ(kept.front(), first);
  EXPECT_EQ(fs::status(backup("2026-01-05.sqlite")).permissions(), fs::perms(0600));
}

TEST_F(RatingsBackups, ARestoreIsSeenByAllAndWhatItReplacesIsKept) {
  clickOn(first, 40);
  ASSERT_TRUE(store.setTrackRating(song, 80));
  ASSERT_TRUE(store.setTrackLoved(other, true));
  RatingsStore running(file, messages);
  EXPECT_EQ(running.trackMarks(song).rating, 80);
  for (int again = 0; again < 2; ++again) {
    const auto report = restoreRatings(store, "2026-01-05");
    ASSERT_TRUE(report) << report.problem().text;
    EXPECT_EQ(running.trackMarks(song).rating, 40);
    EXPECT_EQ(running.trackMarks(other), Marks{});
    RatingsStore kept(report->substr(report->find(" as ") + 4), messages);
    EXPECT_EQ(kept.trackMarks(song).rating, again == 0 ? 80 : 40);
    EXPECT_EQ(kept.trackMarks(other).loved.has_value(), again == 0);
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
  damage(backup("2026-01-05.sqlite"));
  EXPECT_FALSE(restoreRatings(store, "2026-01-05"));
  EXPECT_EQ(store.trackMarks(song).rating, 22);
  EXPECT_NE(listOfBackups(file).find("2026-01-06  1 entry\n2026-01-05  cannot be used: "),
            std::string::npos)
      << listOfBackups(file);
  clickOn(first + days(20), 60);
  EXPECT_EQ(backupDays(file), (std::vector<Day>{first + days(1), first + days(20)}))
      << "the first sound one of the week stays";

  const std::string before = listOfBackups(file);
  std::ofstream(file, std::ios::binary) << "damaged";
  EXPECT_FALSE(backUpRatings(file, first + days(30)));
  EXPECT_EQ(listOfBackups(file), before);
  EXPECT_FALSE(fs::exists(backup("unfinished")));
  ASSERT_TRUE(restoreRatings(store, "2026-01-06")) << "also over a damaged store";
  EXPECT_EQ(store.trackMarks(song).rating, 21);
}

}  // namespace
}  // namespace desktop
