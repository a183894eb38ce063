#include "desktop/ratings/moved_files.h"

#include "platform/platform.h"
#include "tests/desktop/ratings/ratings_fixture.h"
#include "tests/support/manual_clock.h"
#include "tests/support/scripted.h"

namespace desktop {
namespace {

struct RatingsMovedFiles : RatingsFixture {
  RatingsMovedFiles() {
    platform_.runLoop = &clock.runLoop();
    platform_.globalQueue = &workers;
  }
  /// A track as a player tells it.
  TrackIdentity track(const std::string& name,
                      TrackIdentity texts = {
                          .artist = "A", .album = "B", .title = "C", .length = 215.4}) const {
    texts.address = (music.path() / name).native();
    return texts;
  }
  fs::path make(const std::string& name) const { return put(music.path() / name, "sound"); }
  void hear(const TrackIdentity& heard) {
    moved.heard(heard);
    workers.runAll();
    clock.settle();
  }
  std::int64_t rows(const std::string& table) const {
    return selected(("SELECT count(*) FROM " + table).c_str());
  }

  platform::Platform platform_;
  platform::PlatformScope scope_{platform_};
  tests::ManualClock clock;
  tests::ManualQueue workers;
  // Files in /tmp are known for a while only, but not by this way.
  tests::TemporaryFolder music{"/.." + fs::temp_directory_path().native()};
  RatingsStore store{file, messages};
  int announced = 0;
  MovedFiles moved{store, [this] { ++announced; }};
};

TEST_F(RatingsMovedFiles, MarksFollowAFileThatWasRenamedOrMountedElsewhere) {
  const std::string composed = "Caf\u00e9", decomposed = "Cafe\u0301";
  const TrackIdentity disk{.artist = "A", .title = "on a disk", .length = 9};
  const TrackIdentity renamed{.album = "B", .title = "renamed", .length = 9};
  const TrackIdentity tagless{.title = "take", .length = 61};
  const TrackIdentity french{.artist = "A", .title = composed, .length = 61};
  TrackIdentity frenchMoved = french;
  frenchMoved.title = decomposed;
  frenchMoved.artist = "a";
  frenchMoved.length = 61.6;
  const std::pair<TrackIdentity, TrackIdentity> moves[] = {
      {track("old/a.flac"), track("new folder/a.flac")},
      {track("media/DISK/x/b.flac", disk), track("media/DISK1/x/b.flac", disk)},
      {track("c.flac", renamed), track("01 - c.flac", renamed)},
      {track("old/take.mp3", tagless), track("new/take.mp3", tagless)},
      {track(composed + ".mp3", french), track(decomposed + ".mp3", frenchMoved)},
  };
  std::int64_t entries = 0;
  for (const auto& [from, to] : moves) {
    SCOPED_TRACE(to.address);
    ++entries;
    const fs::path old = make(fs::relative(from.address, music.path()));
    hear(from);
    ASSERT_TRUE(store.setTrackRating(from, 70, "rhythmbox", {.said = 60}));
    ASSERT_TRUE(store.setTrackLoved(from, true));
    fs::remove(old);
    make(fs::relative(to.address, music.path()));
    hear(to);
    EXPECT_EQ(store.known(to).track, (Marks{.rating = 70, .loved = true}));
    EXPECT_EQ(store.known(from).track, Marks{});
    EXPECT_FALSE(store.known(to, "rhythmbox").note) << "a library knows the file not yet";
    for (const char* table : {"marks", "names"}) EXPECT_EQ(rows(table), entries) << table;
    EXPECT_EQ(announced, entries);
  }
  EXPECT_EQ(rows("libraries"), 0);
  EXPECT_EQ(messages.str(), "");
}

TEST_F(RatingsMovedFiles, MarksStayWithEveryFileThatIsThereOrIsAnotherOne) {
  const TrackIdentity old = track("old.flac");
  TrackIdentity longer = track("new.flac"), retitled = longer, otherAlbum = longer, stream = longer;
  longer.length += 2;
  retitled.title = "D";
  otherAlbum.album = "";
  stream.address = "https://example.org/new.flac";
  const TrackIdentity titleOnly = track("2/01.mp3", {.title = "Track 1", .length = 9});
  ASSERT_TRUE(store.setTrackRating(old, 70));
  ASSERT_TRUE(store.setTrackRating(track("1/1.mp3", {.title = "Track 1", .length = 9}), 50));
  make("new.flac");
  make("2/01.mp3");
  for (const TrackIdentity& heard :
       {longer, retitled, otherAlbum, stream, titleOnly, track("not there.flac")}) {
    hear(heard);
    EXPECT_EQ(store.known(heard).track, Marks{}) << heard.address;
  }
  make("old.flac");
  hear(track("new.flac"));
  EXPECT_EQ(store.known(old).track.rating, 70) << "a copy";
  fs::remove(music.path() / "old.flac");
  hear(track("new.flac"));
  EXPECT_EQ(announced, 0) << "the disk is not asked for what is still the same track";
  hear(old);
  hear(track("new.flac"));
  EXPECT_EQ(announced, 1);
  EXPECT_EQ(store.known(track("new.flac")).track.rating, 70);
}

TEST_F(RatingsMovedFiles, OfTwoMarksTheLaterOneStaysAndOfTwoFilesThatOfTheSameName) {
  const TrackIdentity to = track("here/same.flac");
  make("here/same.flac");
  ASSERT_TRUE(store.setTrackRating(track("gone/other.flac"), 20));
  ASSERT_TRUE(store.setTrackRating(track("gone/same.flac"), 40));
  ASSERT_TRUE(store.setTrackLoved(track("gone/same.flac"), true));
  inStore("UPDATE marks SET rating_changed = 1000");
  moved.heard(to);
  ASSERT_TRUE(store.setTrackRating(to, 90)) << "a click while the disk is asked";
  workers.runAll();
  clock.settle();
  EXPECT_EQ(store.known(to).track, (Marks{.rating = 90, .loved = true}));
  EXPECT_EQ(store.known(track("gone/other.flac")).track.rating, 20);
  EXPECT_EQ(rows("marks"), 2);
}

TEST_F(RatingsMovedFiles, AnAnswerAfterTheEndIsNobodys) {
  ASSERT_TRUE(store.setTrackRating(track("old.flac"), 70));
  make("new.flac");
  {
    MovedFiles passing(store, [] { FAIL(); });
    passing.heard(track("new.flac"));
    workers.runAll();
  }
  clock.settle();
  EXPECT_EQ(store.known(track("old.flac")).track.rating, 70);
}

}  // namespace
}  // namespace desktop
