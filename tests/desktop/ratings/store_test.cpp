#include "desktop/ratings/store.h"

#include <sys/file.h>
#include <unistd.h>

#include "desktop/ratings/mending.h"
#include "tests/desktop/ratings/ratings_fixture.h"

namespace desktop {
namespace {

const TrackIdentity song{
    .address = "/music/a.flac", .artist = "A", .album = "B", .title = "C", .length = 215};

struct RatingsStoreTest : RatingsFixture {
  std::vector<fs::path> damagedFiles() const {
    std::vector<fs::path> found;
    for (const auto& entry : fs::directory_iterator(file.parent_path())) {
      const std::string name = entry.path().filename();
      if (name.starts_with("ratings-damaged-20") && name.ends_with(".sqlite")) {
        found.push_back(entry.path());
      }
    }
    return found;
  }
};

TEST_F(RatingsStoreTest, MarksAreThereAgainAndEachStandsAlone) {
  {
    RatingsStore store(file, messages);
    EXPECT_EQ(store.known(song).track, Marks{});
    EXPECT_FALSE(fs::exists(file.parent_path())) << "reading made something";
    EXPECT_TRUE(store.setTrackRating(song, 130));
    EXPECT_TRUE(store.setAlbumLoved(song, true));
    EXPECT_TRUE(store.setAlbumRating(song, -5));
    EXPECT_FALSE(store.setTrackRating({.artist = "A"}, 20)) << "cannot be recognised again";
  }
  RatingsStore one(file, messages), other(file, messages);
  EXPECT_EQ(one.known(song).track, (Marks{.rating = 100}));
  EXPECT_EQ(other.known(song).album, (Marks{.rating = 0, .loved = true}));
  EXPECT_TRUE(one.setTrackLoved(song, false));
  EXPECT_EQ(other.known(song).track, (Marks{.rating = 100, .loved = false}));
  EXPECT_EQ(messages.str(), "");
}

TEST_F(RatingsStoreTest, AClickIsOnTheDiskWithItsDateAlsoWhenItSetsTheSame) {
  const std::int64_t before = std::time(nullptr);
  for (int click = 0; click < 2; ++click) {
    EXPECT_TRUE(rate(song, 60));
    EXPECT_GE(selected("SELECT rating_changed FROM marks"), before);
    EXPECT_LE(selected("SELECT rating_changed FROM marks"), std::time(nullptr));
    inStore("UPDATE marks SET rating_changed = 1000");
  }
  EXPECT_EQ(selected("SELECT loved_changed FROM marks"), 0) << "no love was set";
  Database database;
  Patience patience;
  EXPECT_FALSE(openRatingsFile(file, false, patience, database));
  constexpr std::int64_t extra = 3;
  std::int64_t synchronous = 0;
  EXPECT_EQ(database.readInteger("PRAGMA synchronous", synchronous), SQLITE_OK);
  EXPECT_EQ(synchronous, extra);
}

TEST_F(RatingsStoreTest, AnImportThatFailsInTheMiddleChangesNothing) {
  rate(song, 60);
  inStore(
      "CREATE TRIGGER refuse BEFORE INSERT ON marks"
      " WHEN (SELECT count(*) FROM marks) > 1 BEGIN SELECT RAISE(FAIL, 'unlucky'); END");
  RatingsStore store(file, messages);
  EXPECT_FALSE(importRatings(store, listOf(1, 3)));
  EXPECT_EQ(selected("SELECT count(*) FROM marks"), 1);
}

TEST_F(RatingsStoreTest, AWriteWhoseFileIsTakenAwayEachTimeIsNotConfirmed) {
  EntryCollection offered;
  MergeCounts counts;
  ASSERT_EQ(offered.makeEmpty(), SQLITE_OK);
  offered.add({.identity = song, .marks = {.rating = 60}}, counts);
  offered.add({.identity = {.title = "other"}, .marks = {.rating = 20}}, counts);
  int rows = 0;
  std::function<void()> move = [&] {
    // After the first row is written the database does not look again.
    std::error_code error;
    if (++rows % 2 == 0) fs::rename(file, folder.path() / std::to_string(rows), error);
  };
  sqlite3* const reading = offered.database.handle();
  const auto call = [](unsigned, void* context, void*, void*) {
    return (*static_cast<std::function<void()>*>(context))(), 0;
  };
  sqlite3_trace_v2(reading, SQLITE_TRACE_ROW, call, &move);
  RatingsStore store(file, messages);
  EXPECT_FALSE(store.merge(offered));
  EXPECT_EQ(rows, 6);
  sqlite3_trace_v2(reading, 0, nullptr, nullptr);
  EXPECT_TRUE(store.merge(offered));
  EXPECT_EQ(rating(song), 60);
}

TEST_F(RatingsStoreTest, ASoundFileThatTookTheDamagedOnesPlaceStaysAndAHeldFolderIsLeftAlone) {
  rate(song, 60);
  Patience patience;
  Database moved = opened(file);
  fs::rename(file, folder.path() / "aside");
  rate(song, 80);
  EXPECT_EQ(mendRatingsFile(file, patience, std::move(moved))->kept, fs::path());
  EXPECT_EQ(rating(song), 80);

  const FileDescriptor holder(::open(file.parent_path().c_str(), O_RDONLY | O_DIRECTORY));
  ASSERT_EQ(::flock(holder.get(), LOCK_EX | LOCK_NB), 0);
  while (patience.wait()) {
  }
  EXPECT_FALSE(mendRatingsFile(file, patience, opened(file)));
  fs::remove(file);
  Database fresh;
  EXPECT_EQ(openRatingsFile(file, true, patience, fresh)->kind, StoreProblem::Kind::busy);
}

TEST_F(RatingsStoreTest, MigrationIsAllOrNothingAndKeepsWhatIsThere) {
  Database database = opened(folder.path() / "old");
  const char* const first[] = {"CREATE TABLE t (a); INSERT INTO t VALUES (7)"};
  const char* const broken[] = {first[0], "ALTER TABLE t ADD b DEFAULT 8", "no statement"};
  const char* const whole[] = {first[0], broken[1], "ALTER TABLE t ADD c DEFAULT 9"};
  std::int64_t number = 0;
  EXPECT_EQ(migrate(database, first), SQLITE_OK);
  EXPECT_NE(migrate(database, broken), SQLITE_OK);
  EXPECT_NE(database.readInteger("SELECT b FROM t", number), SQLITE_OK) << "half done";
  EXPECT_EQ(migrate(database, whole), SQLITE_OK);
  EXPECT_EQ(migrate(database, first), SQLITE_OK) << "an older program leaves it as it is";
  EXPECT_EQ(database.readInteger("SELECT a * 100 + b * 10 + c FROM t", number), SQLITE_OK);
  EXPECT_EQ(number, 789);
}

TEST_F(RatingsStoreTest, TheFileIsLeftAndNothingIsLost) {
  const fs::path backup = folder.path() / "backup", away = folder.path() / "away";
  const TrackIdentity early{.title = "early"}, late{.title = "late"}, last{.title = "last"};
  const std::function<void()> changes[] = {
      [&] { fs::rename(file, away); },
      [&] { fs::remove(file); },
      [&] { fs::remove_all(file.parent_path()); },
      [&] { fs::rename(backup, file); },
      [&] { fs::rename(file, away), rate(song, 90); },
      [&] { fs::rename(file, away), put(file, "no database at all, but some text"); }};
  for (std::size_t i = 0; i < std::size(changes); ++i) {
    SCOPED_TRACE(i);
    fs::remove_all(file.parent_path());
    messages.str("");
    rate(early, 20);
    fs::copy_file(file, backup, fs::copy_options::overwrite_existing);
    {
      RatingsStore store(file, messages), idle(file, messages), clicking(file, messages);
      EXPECT_TRUE(store.setTrackRating(late, 40));
      EXPECT_EQ(idle.known(late).track.rating, 40);
      EXPECT_EQ(clicking.known(late).track.rating, 40);
      changes[i]();
      EXPECT_TRUE(clicking.setTrackRating(last, 60));
      EXPECT_EQ(store.known(late).track.rating, 40);
      EXPECT_EQ(store.known(last).track.rating, 60);
    }
    EXPECT_EQ(rating(early) + rating(late) + rating(last), 20 + 40 + 60);
    EXPECT_EQ(rating(song), i == 4 ? 90 : -1);
    EXPECT_NE(messages.str().find(i == 3 ? "1 entry was carried" : "2 entries were carried"),
              std::string::npos)
        << messages.str();
  }
}

TEST_F(RatingsStoreTest, AFileThatWasMovedIsReadUntilItCanBeCarriedOver) {
  RatingsStore store(file, messages);
  EXPECT_TRUE(store.setTrackRating(song, 40));
  fs::rename(file, folder.path() / "away");
  fs::create_directory(file);
  for (int again = 0; again < 3; ++again) {
    EXPECT_EQ(store.known(song).track.rating, 40);
    EXPECT_FALSE(store.setTrackRating(song, 60));
  }
  EXPECT_EQ(lines(), 1) << messages.str();
  fs::remove(file);
  EXPECT_EQ(store.known(song).track.rating, 40);
  EXPECT_TRUE(store.setTrackRating(song, 60));
  EXPECT_EQ(rating(song), 60);
}

TEST_F(RatingsStoreTest, AnEarlierVersionsLogIsReadAndEndsAsSoonAsNobodyElseHasTheFileOpen) {
  const fs::path log = file.native() + "-wal";
  rate(song, 20);
  Database earlier = opened(file);
  ASSERT_EQ(earlier.execute("PRAGMA journal_mode = WAL; UPDATE marks SET rating = 30"), SQLITE_OK);
  const std::string logged = contents(log);
  {
    RatingsStore store(file, messages);
    EXPECT_EQ(store.known(song).track.rating, 30);
    EXPECT_TRUE(store.setTrackRating(song, 40));
    EXPECT_TRUE(fs::exists(log));
    earlier.close();
    EXPECT_EQ(store.known(song).track.rating, 40);
    EXPECT_FALSE(fs::exists(log));
  }
  fs::remove(file);
  put(log, logged);
  EXPECT_TRUE(rate({.title = "other"}, 60));
  EXPECT_EQ(rating(song), 30) << "of a log without its database";
  EXPECT_EQ(lines(), 1) << messages.str();
  const std::string kept = messages.str().substr(messages.str().find(folder.path()));
  EXPECT_EQ(contents(kept.substr(0, kept.find(';'))), logged);
}

TEST_F(RatingsStoreTest, TablesOfANewerVersionAreReadAsFarAsThatGoesAndNeverWritten) {
  RatingsStore before(file, messages);
  EXPECT_TRUE(before.setTrackRating(song, 60));
  const auto expectReadOnly = [&](int rating) {
    const std::string newer = contents(file);
    messages.str("");
    RatingsStore store(file, messages);
    for (RatingsStore* each : {&before, &store, &store}) {
      EXPECT_EQ(each->known(song).track.rating.value_or(-1), rating);
      EXPECT_FALSE(each->setTrackLoved(song, true));
    }
    EntryCollection copy;
    EXPECT_EQ(store.copyTo(copy)->kind, StoreProblem::Kind::newer);
    EXPECT_EQ(contents(file), newer);
  };
  inStore("PRAGMA user_version = 1000");
  expectReadOnly(60);
  EXPECT_EQ(lines(), 2) << "one of each: " << messages.str();
  inStore("ALTER TABLE marks RENAME COLUMN rating TO stars");
  expectReadOnly(-1);
  EXPECT_EQ(damagedFiles().size(), 0U);
}

TEST_F(RatingsStoreTest, ADamagedStoreIsKeptBesideAndANewOneBegins) {
  rate(song, 60);
  const std::string sound = contents(file);
  ASSERT_EQ(opened(folder.path() / "foreign").execute("CREATE TABLE t (a); PRAGMA user_version=2"),
            SQLITE_OK);
  std::size_t count = 0;
  for (const std::string& damaged :
       {std::string(5000, 'x'), sound.substr(0, 600), std::string("SQLite format 3"),
        sound.substr(0, 100) + std::string(sound.size() - 100, '\xFF'),
        contents(folder.path() / "foreign")}) {
    put(file, damaged);
    messages.str("");
    EXPECT_EQ(rating(song), -1);
    EXPECT_TRUE(rate(song, 20));
    EXPECT_EQ(lines(), 1) << messages.str();
    const auto kept = damagedFiles();
    EXPECT_EQ(kept.size(), ++count);
    EXPECT_TRUE(std::ranges::any_of(kept, [&](const fs::path& path) {
      return contents(path) == damaged && messages.str().find(path) != std::string::npos;
    })) << messages.str();
  }
}

TEST_F(RatingsStoreTest, ALockedFileIsNotWritten) {
  rate(song, 60);
  // The second lock keeps a widget that starts meanwhile from reading, too.
  for (const auto& [lock, readable] : {std::pair("BEGIN IMMEDIATE", 60), {"BEGIN EXCLUSIVE", -1}}) {
    Database other = opened(file);
    ASSERT_EQ(other.execute(lock), SQLITE_OK);
    messages.str("");
    RatingsStore store(file, messages);
    for (int click = 0; click < 3; ++click) {
      EXPECT_FALSE(store.setTrackRating(song, click));
      EXPECT_EQ(store.known(song).track.rating.value_or(-1), readable);
    }
    EXPECT_EQ(lines(), 1) << messages.str();
    other.close();
    EXPECT_TRUE(store.setTrackRating(song, 60));
  }
}

TEST_F(RatingsStoreTest, AReadOnlyFolderIsReadAndRefusesWrites) {
  rate(song, 60);
  const auto setRights = [&](int rights) {
    for (const fs::path& each : {folder.path(), file.parent_path(), file}) {
      fs::permissions(each, static_cast<fs::perms>(rights));
    }
  };
  setRights(0555);
  const uid_t user = ::geteuid();
  constexpr uid_t nobody = 65534;
  ASSERT_EQ(::seteuid(user == 0 ? nobody : user), 0);
  RatingsStore store(file, messages);
  for (int again = 0; again < 3; ++again) {
    EXPECT_EQ(store.known(song).track.rating, 60);
    EXPECT_FALSE(store.setTrackRating(song, 20) || store.setTrackLoved(song, true));
  }
  EXPECT_EQ(::seteuid(user), 0);
  EXPECT_EQ(lines(), 1) << messages.str();
  setRights(0700);
}

}  // namespace
}  // namespace desktop
