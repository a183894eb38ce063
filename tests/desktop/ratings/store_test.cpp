#include "desktop/ratings/store.h"

#include <gtest/gtest.h>
#include <sys/file.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <functional>
#include <iterator>
#include <sstream>
#include <vector>

#include "desktop/files/file_descriptor.h"
#include "desktop/ratings/mending.h"
#include "tests/support/temporary_folder.h"

namespace desktop {
namespace {

namespace fs = std::filesystem;
using tests::contents;

const TrackIdentity song{
    .address = "/music/a.flac", .artist = "A", .album = "B", .title = "C", .length = 215};

std::unique_ptr<EntryCollection> collected(const std::vector<RatingsRecord>& records) {
  auto collection = std::make_unique<EntryCollection>();
  MergeCounts counts;
  EXPECT_EQ(collection->makeEmpty(), SQLITE_OK);
  for (const RatingsRecord& each : records) collection->add(each, counts);
  return collection;
}

class RatingsStoreTest : public testing::Test {
 protected:
  /// Does this in a file of the folder, the store's unless it has a name, and answers the file.
  fs::path inDatabase(const char* sql, const char* name = nullptr) const {
    fs::path path = name != nullptr ? folder.path() / name : file;
    Database database;
    EXPECT_EQ(database.open(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE), SQLITE_OK);
    EXPECT_EQ(database.execute(sql), SQLITE_OK);
    return path;
  }
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
  std::ptrdiff_t lines() const {
    const std::string all = messages.str();
    return std::count(all.begin(), all.end(), '\n');
  }

  tests::TemporaryFolder folder;
  const fs::path file = folder.path() / "data/virelune-widget/ratings.sqlite";
  std::ostringstream messages;
};

TEST_F(RatingsStoreTest, MarksAreThereAgainAndEachStandsAlone) {
  {
    RatingsStore store(file, messages);
    EXPECT_EQ(store.trackMarks(song), Marks{});
    EXPECT_FALSE(fs::exists(file.parent_path())) << "reading made something";
    EXPECT_TRUE(store.setTrackRating(song, 130));
    EXPECT_TRUE(store.setAlbumLoved(song, true));
    EXPECT_TRUE(store.setAlbumRating(song, -5));
    EXPECT_FALSE(store.setTrackRating({.artist = "A"}, 20)) << "cannot be recognised again";
  }
  RatingsStore one(file, messages), other(file, messages);
  EXPECT_EQ(one.trackMarks(song), (Marks{.rating = 100}));
  EXPECT_EQ(other.albumMarks(song), (Marks{.rating = 0, .loved = true}));
  EXPECT_TRUE(one.setTrackLoved(song, false));
  EXPECT_EQ(other.trackMarks(song), (Marks{.rating = 100, .loved = false}));
  EXPECT_EQ(messages.str(), "");
}

TEST_F(RatingsStoreTest, AClickIsOnTheDiskWithItsDate) {
  const std::int64_t before = std::time(nullptr);
  RatingsStore store(file, messages);
  store.setTrackLoved(song, true);
  EntryCollection copy;
  EXPECT_FALSE(store.copyTo(copy));
  copy.entries.forEach([&](const StoredEntry& entry) {
    const RatingsRecord& record = entry.record;
    EXPECT_GE(record.lovedChanged, before);
    EXPECT_LE(record.lovedChanged, std::time(nullptr));
    EXPECT_EQ(record.ratingChanged, 0) << "no rating was set";
    EXPECT_EQ(record.identity.title, song.title);
    return true;
  });
  Database database;
  Patience patience;
  EXPECT_FALSE(openRatingsFile(file, false, patience, database));
  constexpr std::int64_t extra = 3;
  std::int64_t synchronous = 0;
  EXPECT_EQ(database.readInteger("PRAGMA synchronous", synchronous), SQLITE_OK);
  EXPECT_EQ(synchronous, extra);
}

TEST_F(RatingsStoreTest, AnImportThatFailsInTheMiddleChangesNothing) {
  RatingsStore store(file, messages);
  store.setTrackRating(song, 60);
  inDatabase(
      "CREATE TRIGGER refuse BEFORE INSERT ON marks WHEN new.rating = 13"
      " BEGIN SELECT RAISE(FAIL, 'unlucky'); END");
  EXPECT_FALSE(
      store.merge(*collected({{.identity = {.title = "first"}, .marks = {.rating = 20}},
                              {.identity = {.title = "second"}, .marks = {.rating = 13}}})));
  EXPECT_EQ(store.trackMarks({.title = "first"}), Marks{});
  EXPECT_EQ(store.trackMarks(song).rating, 60);
}

TEST_F(RatingsStoreTest, AWriteWhoseFileIsTakenAwayEachTimeIsNotConfirmed) {
  const auto offered = collected({{.identity = song, .marks = {.rating = 60}},
                                  {.identity = {.title = "other"}, .marks = {.rating = 20}}});
  int rows = 0;
  std::function<void()> move = [&] {
    // After the first row is written the database does not look again.
    std::error_code error;
    if (++rows % 2 == 0) fs::rename(file, folder.path() / std::to_string(rows), error);
  };
  sqlite3* const reading = offered->database.handle();
  const auto call = [](unsigned, void* context, void*, void*) {
    return (*static_cast<std::function<void()>*>(context))(), 0;
  };
  sqlite3_trace_v2(reading, SQLITE_TRACE_ROW, call, &move);
  RatingsStore store(file, messages);
  EXPECT_FALSE(store.merge(*offered));
  EXPECT_EQ(rows, 6);
  sqlite3_trace_v2(reading, 0, nullptr, nullptr);
  EXPECT_TRUE(store.merge(*offered));
  EXPECT_EQ(RatingsStore(file, messages).trackMarks(song).rating, 60);
}

TEST_F(RatingsStoreTest, ASoundFileThatTookTheDamagedOnesPlaceStaysAndAHeldFolderIsLeftAlone) {
  RatingsStore(file, messages).setTrackRating(song, 60);
  Patience patience;
  const auto opened = [&] {
    Database database;
    EXPECT_FALSE(openRatingsFile(file, true, patience, database));
    return database;
  };
  Database moved = opened();
  fs::rename(file, folder.path() / "aside");
  RatingsStore(file, messages).setTrackRating(song, 80);
  EXPECT_EQ(mendRatingsFile(file, patience, std::move(moved))->kept, fs::path());
  EXPECT_EQ(RatingsStore(file, messages).trackMarks(song).rating, 80);

  const FileDescriptor holder(::open(file.parent_path().c_str(), O_RDONLY | O_DIRECTORY));
  ASSERT_EQ(::flock(holder.get(), LOCK_EX | LOCK_NB), 0);
  while (patience.wait()) {
  }
  EXPECT_FALSE(mendRatingsFile(file, patience, opened()));
  fs::remove(file);
  Database fresh;
  EXPECT_EQ(openRatingsFile(file, true, patience, fresh)->kind, StoreProblem::Kind::busy);
}

TEST_F(RatingsStoreTest, MigrationIsAllOrNothingAndKeepsWhatIsThere) {
  Database database;
  ASSERT_EQ(database.open(folder.path() / "old", SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE), 0);
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

TEST_F(RatingsStoreTest, TheOneFileIsAllThereIsWhileItIsOpen) {
  RatingsStore store(file, messages), other(file, messages);
  for (int rating = 0; rating < 20; ++rating) {
    EXPECT_TRUE((rating % 2 == 0 ? store : other).setTrackRating(song, rating));
    fs::copy_file(file, folder.path() / "copy", fs::copy_options::overwrite_existing);
    EXPECT_EQ(RatingsStore(folder.path() / "copy").trackMarks(song).rating, rating);
  }
}

TEST_F(RatingsStoreTest, TheFileIsLeftAndNothingIsLost) {
  const fs::path backup = folder.path() / "backup", away = folder.path() / "away";
  const TrackIdentity early{.title = "early"}, late{.title = "late"}, last{.title = "last"};
  const std::function<void()> changes[] = {
      [&] { fs::rename(file, away); },
      [&] { fs::remove(file); },
      [&] { fs::remove_all(file.parent_path()); },
      [&] { fs::rename(backup, file); },
      [&] { fs::rename(file, away), RatingsStore(file, messages).setTrackRating(song, 90); },
      [&] { fs::rename(file, away), std::ofstream(file) << "no database at all, but some text"; }};
  for (std::size_t i = 0; i < std::size(changes); ++i) {
    SCOPED_TRACE(i);
    fs::remove_all(file.parent_path());
    messages.str("");
    RatingsStore(file, messages).setTrackRating(early, 20);
    fs::copy_file(file, backup, fs::copy_options::overwrite_existing);
    {
      RatingsStore store(file, messages), idle(file, messages), clicking(file, messages);
      EXPECT_TRUE(store.setTrackRating(late, 40));
      EXPECT_EQ(idle.trackMarks(late).rating, 40);
      EXPECT_EQ(clicking.trackMarks(late).rating, 40);
      changes[i]();
      EXPECT_TRUE(clicking.setTrackRating(last, 60));
      EXPECT_EQ(store.trackMarks(late).rating, 40);
      EXPECT_EQ(store.trackMarks(last).rating, 60);
    }
    RatingsStore store(file, messages);
    EXPECT_EQ(store.trackMarks(early).rating, 20);
    EXPECT_EQ(store.trackMarks(late).rating, 40);
    EXPECT_EQ(store.trackMarks(last).rating, 60);
    EXPECT_EQ(store.trackMarks(song).rating, i == 4 ? std::optional(90) : std::nullopt);
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
    EXPECT_EQ(store.trackMarks(song).rating, 40);
    EXPECT_FALSE(store.setTrackRating(song, 60));
  }
  EXPECT_EQ(lines(), 1) << messages.str();
  fs::remove(file);
  EXPECT_EQ(store.trackMarks(song).rating, 40);
  EXPECT_TRUE(store.setTrackRating(song, 60));
  EXPECT_EQ(RatingsStore(file, messages).trackMarks(song).rating, 60);
}

TEST_F(RatingsStoreTest, ContentsCopiedOverTheFileAreSeenByAll) {
  RatingsStore store(file, messages), other(file, messages);
  EXPECT_TRUE(store.setTrackRating(song, 40));
  const std::string backup = contents(file);
  EXPECT_TRUE(store.setTrackRating(song, 60));
  EXPECT_EQ(other.trackMarks(song).rating, 60);
  std::ofstream(file, std::ios::binary) << backup;
  EXPECT_EQ(other.trackMarks(song).rating, 40);
  EXPECT_TRUE(other.setTrackLoved(song, true));
  EXPECT_EQ(store.trackMarks(song), (Marks{.rating = 40, .loved = true}));
}

TEST_F(RatingsStoreTest, WriteAheadModeIsLeftAsSoonAsNobodyElseHasTheFileOpen) {
  RatingsStore(file, messages).setTrackRating(song, 20);
  inDatabase("PRAGMA journal_mode = WAL");
  Database earlier;  // version of the program
  ASSERT_EQ(earlier.open(file, SQLITE_OPEN_READWRITE), SQLITE_OK);
  ASSERT_EQ(earlier.execute("UPDATE marks SET rating = 30"), SQLITE_OK);
  RatingsStore store(file, messages), other(file, messages);
  EXPECT_EQ(store.trackMarks(song).rating, 30);
  EXPECT_EQ(other.trackMarks(song).rating, 30);
  EXPECT_TRUE(store.setTrackRating(song, 40));
  EXPECT_TRUE(fs::exists(file.native() + "-wal"));
  earlier.close();
  EXPECT_EQ(store.trackMarks(song).rating, 40);
  EXPECT_FALSE(fs::exists(file.native() + "-wal"));
  EXPECT_TRUE(other.setTrackRating(song, 50));
  EXPECT_EQ(store.trackMarks(song).rating, 50);
}

TEST_F(RatingsStoreTest, ALogWithoutItsDatabaseIsKeptAndRead) {
  RatingsStore(file, messages).setTrackRating(song, 20);
  std::string log;
  {
    Database earlier;
    ASSERT_EQ(earlier.open(file, SQLITE_OPEN_READWRITE), SQLITE_OK);
    earlier.execute("PRAGMA journal_mode = WAL; UPDATE marks SET rating = 30");
    log = contents(file.native() + "-wal");
  }
  fs::remove(file);
  std::ofstream(file.native() + "-wal", std::ios::binary) << log;
  RatingsStore store(file, messages);
  EXPECT_TRUE(store.setTrackRating({.title = "other"}, 60));
  EXPECT_EQ(store.trackMarks(song).rating, 30);
  EXPECT_EQ(lines(), 1) << messages.str();
  const std::string kept = messages.str().substr(messages.str().find(folder.path()));
  EXPECT_EQ(contents(kept.substr(0, kept.find(';'))), log);
}

TEST_F(RatingsStoreTest, AClickIsANewOneAlsoWhenItSetsTheSame) {
  RatingsStore store(file, messages);
  EXPECT_TRUE(store.setTrackRating(song, 60));
  inDatabase("UPDATE marks SET rating_changed = 1000");
  EXPECT_TRUE(store.setTrackRating(song, 60));
  const auto older =
      collected({{.identity = song, .marks = {.rating = 20}, .ratingChanged = 2000}});
  EXPECT_EQ(store.merge(*older)->unchanged, 1);
  EXPECT_EQ(store.trackMarks(song).rating, 60);
}

TEST_F(RatingsStoreTest, TablesOfANewerVersionAreReadAsFarAsThatGoesAndNeverWritten) {
  RatingsStore(file, messages).setTrackRating(song, 60);
  RatingsStore before(file, messages);
  EXPECT_TRUE(before.setTrackRating(song, 60));
  inDatabase("PRAGMA user_version = 1000");
  const std::string newer = contents(file);
  EXPECT_EQ(before.trackMarks(song).rating, 60);
  EXPECT_FALSE(before.setTrackRating(song, 20));
  EXPECT_FALSE(before.setTrackRating(song, 20));
  RatingsStore store(file, messages);
  EXPECT_EQ(store.trackMarks(song).rating, 60);
  EXPECT_FALSE(store.setTrackLoved(song, true));
  EXPECT_EQ(lines(), 2) << messages.str();
  EntryCollection copy;
  EXPECT_EQ(store.copyTo(copy)->kind, StoreProblem::Kind::newer);
  EXPECT_EQ(contents(file), newer);
  inDatabase("ALTER TABLE marks RENAME COLUMN rating TO stars");
  const std::string renamed = contents(file);
  messages.str("");
  RatingsStore third(file, messages);
  for (RatingsStore* each : {&before, &store, &third}) {
    EXPECT_EQ(each->trackMarks(song), Marks{});
    EXPECT_FALSE(each->setTrackRating(song, 20));
  }
  EXPECT_EQ(lines(), 1) << messages.str();
  EXPECT_EQ(contents(file), renamed);
  EXPECT_EQ(damagedFiles().size(), 0U);
}

TEST_F(RatingsStoreTest, ADamagedStoreIsKeptBesideAndANewOneBegins) {
  RatingsStore(file, messages).setTrackRating(song, 60);
  const std::string sound = contents(file);
  std::size_t count = 0;
  for (const std::string& damaged :
       {std::string(5000, 'x'), sound.substr(0, 600), std::string("SQLite format 3"),
        sound.substr(0, 100) + std::string(sound.size() - 100, '\xFF'),
        contents(inDatabase("CREATE TABLE t (a); PRAGMA user_version = 2", "foreign"))}) {
    std::ofstream(file, std::ios::binary | std::ios::trunc) << damaged;
    messages.str("");
    RatingsStore store(file, messages);
    EXPECT_EQ(store.trackMarks(song), Marks{});
    EXPECT_TRUE(store.setTrackRating(song, 20));
    EXPECT_EQ(lines(), 1) << messages.str();
    const auto kept = damagedFiles();
    EXPECT_EQ(kept.size(), ++count);
    EXPECT_TRUE(std::any_of(kept.begin(), kept.end(), [&](const fs::path& path) {
      return contents(path) == damaged && messages.str().find(path) != std::string::npos;
    })) << messages.str();
  }
}

TEST_F(RatingsStoreTest, DamageFoundLaterSetsTheStoreAsideForAllWidgets) {
  RatingsStore one(file, messages), other(file, messages);
  std::vector<RatingsRecord> many;
  for (int i = 0; i < 500; ++i) {
    many.push_back({.identity = {.title = std::to_string(i)}, .marks = {.rating = 40}});
  }
  ASSERT_TRUE(RatingsStore(file, messages).merge(*collected(many)));
  EXPECT_EQ(one.trackMarks({.title = "0"}).rating, 40);
  EXPECT_EQ(other.trackMarks({.title = "0"}).rating, 40);
  // All pages but the first, under both open connections.
  std::fstream(file, std::ios::in | std::ios::out | std::ios::binary).seekp(4096)
      << std::string(fs::file_size(file) - 4096, '\xFF');
  RatingsStore third(file, messages);
  EXPECT_TRUE(third.setTrackRating(song, 80));
  EXPECT_EQ(damagedFiles().size(), 1U);
  EXPECT_EQ(lines(), 1) << messages.str();
  EXPECT_TRUE(one.setTrackLoved(song, true));
  EXPECT_EQ(other.trackMarks(song), (Marks{.rating = 80, .loved = true}));
  EXPECT_EQ(damagedFiles().size(), 1U) << "a sound store was set aside";
}

TEST_F(RatingsStoreTest, ALockedFileIsNotWritten) {
  struct Case {
    const char* lock;
    Marks readable;  // by a widget that starts meanwhile
  };
  RatingsStore(file, messages).setTrackRating(song, 60);
  for (const Case& c : {Case{"BEGIN IMMEDIATE", {.rating = 60}}, Case{"BEGIN EXCLUSIVE", {}}}) {
    Database other;
    ASSERT_EQ(other.open(file, SQLITE_OPEN_READWRITE), SQLITE_OK);
    ASSERT_EQ(other.execute(c.lock), SQLITE_OK);
    messages.str("");
    RatingsStore store(file, messages);
    for (int click = 0; click < 3; ++click) {
      EXPECT_FALSE(store.setTrackRating(song, click));
      EXPECT_EQ(store.trackMarks(song), c.readable);
    }
    EXPECT_EQ(lines(), 1) << messages.str();
    other.close();
    EXPECT_TRUE(store.setTrackRating(song, 60));
  }
}

/// The tests below run in a process of their own: they give up rights.
using RatingsStoreDeathTest = RatingsStoreTest;

TEST_F(RatingsStoreDeathTest, AReadOnlyFolderIsReadAndRefusesWrites) {
  RatingsStore(file, messages).setTrackRating(song, 60);
  const auto setRights = [&](int rights) {
    for (const fs::path& each : {folder.path(), folder.path() / "data", file.parent_path(), file}) {
      fs::permissions(each, static_cast<fs::perms>(rights));
    }
  };
  setRights(0555);
  EXPECT_EXIT(
      {
        constexpr uid_t nobody = 65534;
        if (::geteuid() == 0 && ::setuid(nobody) != 0) ::_exit(2);
        RatingsStore store(file);
        bool right = true;
        for (int again = 0; again < 3; ++again) {
          right = right && store.trackMarks(song).rating == 60;
          right = right && !store.setTrackRating(song, 20) && !store.setTrackLoved(song, true);
        }
        ::_exit(right ? 0 : 1);
      },
      testing::ExitedWithCode(0), "^virelune-widget: [^\n]*\n$");
  setRights(0700);
}

TEST_F(RatingsStoreDeathTest, AFullDiskRefusesWritesUntilThereIsSpace) {
  RatingsStore(file, messages).setTrackRating(song, 60);
  EXPECT_EXIT(
      {
        std::signal(SIGXFSZ, SIG_IGN);
        RatingsStore store(file);
        bool right = store.setTrackRating(song, 40);
        rlimit limit{};
        ::getrlimit(RLIMIT_FSIZE, &limit);
        limit.rlim_cur = 6000;  // enough for the file's first page only
        ::setrlimit(RLIMIT_FSIZE, &limit);
        right = right && !store.setTrackRating(song, 0) && !store.setTrackRating(song, 20);
        right = right && store.trackMarks(song).rating == 40;
        limit.rlim_cur = limit.rlim_max;
        ::setrlimit(RLIMIT_FSIZE, &limit);
        right = right && store.trackMarks(song).rating == 40;
        right = right && store.setTrackRating(song, 7);
        ::_exit(right ? 0 : 1);
      },
      testing::ExitedWithCode(0), "^virelune-widget: [^\n]*\n$");
  EXPECT_EQ(RatingsStore(file, messages).trackMarks(song).rating, 7);
}

}  // namespace
}  // namespace desktop
