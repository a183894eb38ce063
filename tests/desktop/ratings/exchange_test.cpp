#include "desktop/ratings/exchange.h"

#include <dlfcn.h>

#include <list>

#include "tests/desktop/ratings/ratings_fixture.h"

namespace {

int callsUntilFault = 0;  // none when 0

bool fails() {
  if (callsUntilFault == 0 || --callsUntilFault > 0) return false;
  errno = EIO;
  return true;
}

template <class Function>
Function* real(const char* name) {
  return reinterpret_cast<Function*>(::dlsym(RTLD_NEXT, name));
}

}  // namespace

// In the place of the C library's.
extern "C" {

std::size_t fwrite(const void* bytes, std::size_t size, std::size_t count, FILE* file) {
  return fails() ? 0 : real<decltype(fwrite)>("fwrite")(bytes, size, count, file);
}
int fflush(FILE* file) { return fails() ? EOF : real<decltype(fflush)>("fflush")(file); }
int fsync(int file) { return fails() ? -1 : real<decltype(fsync)>("fsync")(file); }
int rename(const char* from, const char* to) noexcept {
  return fails() ? -1 : real<int(const char*, const char*)>("rename")(from, to);
}
}

namespace desktop {
namespace {

struct RatingsExchange : RatingsFixture {
  Result<std::string> import(RatingsStore& into, const std::string& text) const {
    return importRatings(into, put(list, text));
  }
  /// The report's counts, as they stand behind the file's name.
  std::string imported(RatingsStore& into, const std::string& text) const {
    const auto report = import(into, text);
    return report ? report->substr(list.size() + 11) : report.problem().text;
  }
  std::string exported(RatingsStore& from) const {
    EXPECT_TRUE(exportRatings(from, list));
    return contents(list);
  }
  std::ptrdiff_t files() const {
    return std::distance(fs::recursive_directory_iterator(folder.path()), {});
  }

  const std::string list = folder.path() / "ratings.jsonl";
  RatingsStore store{file};
  RatingsStore other{folder.path() / "other.sqlite"};
};

TEST_F(RatingsExchange, WhatIsExportedCanBeImportedWithoutLossAndInTheSameOrder) {
  const TrackIdentity named{.address = "blob:x",
                            .artist = "Björk \"quoted\"\n",
                            .album = "\\",
                            .title = "\xFF malformed",
                            .length = 215.6};
  store.setTrackRating(named, 0);
  store.setTrackLoved({.address = "/music/\xE9 %.flac", .title = "by address"}, false);
  store.setAlbumRating(named, 100);
  store.setAlbumLoved({.artist = "A", .album = "B"}, true);
  const std::string lines = exported(store);
  EXPECT_EQ(imported(other, lines), "4 added, 0 changed, 0 unchanged");
  EXPECT_EQ(exported(other), lines);
  EXPECT_EQ(other.known(named).track, (Marks{.rating = 0}));
  EXPECT_EQ(imported(other, lines), "0 added, 0 changed, 4 unchanged");
}

TEST_F(RatingsExchange, AMergeKeepsWhatWasSetLater) {
  const auto line = [](const char* title, const char* marks, const char* year = nullptr) {
    return R"({"kind":"track","title":")" + std::string(title) + "\"," + marks +
           (year ? R"(,"ratingChanged":")" + std::string(year) + R"(-01-01T00:00:00Z"})" : "}") +
           '\n';
  };
  ASSERT_TRUE(import(
      store, line("newer", R"("rating":60)", "2021") + line("older", R"("rating":60)", "2020") +
                 line("undated", R"("rating":60)") + line("half", R"("loved":true)")));
  EXPECT_EQ(imported(store, "\xEF\xBB\xBF" + line("newer", R"("rating":20)", "2020") +
                                line("OLDER", R"("rating":20)", "2021") +
                                line("undated", R"("rating":20)") +
                                line("half", R"("rating":20,"loved":false)") + "\r\n" +
                                line("new", R"("loved":false)")),
            "1 added, 2 changed, 2 unchanged");
  EXPECT_EQ(store.known({.title = "newer"}).track.rating, 60);
  EXPECT_EQ(store.known({.title = "older"}).track.rating, 20);
  EXPECT_EQ(store.known({.title = "undated"}).track.rating, 60);
  EXPECT_EQ(store.known({.title = "half"}).track, (Marks{.rating = 20, .loved = true}));
}

TEST_F(RatingsExchange, ABadLineIsNamedAndNothingIsHalfDone) {
  const std::string good = R"({"kind":"track","title":"good","rating":20})"
                           "\n\n";
  for (const std::string bad :
       {"{", "[]", "{} {}", R"({"title":"C","rating":20})",
        R"({"kind":"song","title":"C","rating":20})",
        R"({"kind":"album","artist":"A","title":"C","rating":20})",
        R"({"kind":"track","title":7,"rating":20})", R"({"kind":"track","title":"C"})",
        R"({"kind":"track","address":"blob:1","rating":20})",
        R"({"kind":"track","title":"C","rating":101})",
        R"({"kind":"track","title":"C","rating":18446744073709551615})",
        R"({"kind":"track","title":"C","rating":2.5})", R"({"kind":"track","title":"C","loved":1})",
        R"({"kind":"track","title":"C","loved":true,"length":-1})",
        R"({"kind":"track","title":"C","loved":true,"lovedChanged":"today"})",
        "{\"kind\":\"track\",\"title\":\"\xFF\",\"rating\":20}"}) {
    const auto result = import(store, good + bad + '\n' + good);
    ASSERT_FALSE(result) << bad;
    EXPECT_TRUE(result.problem().text.starts_with(list + ", line 3: ")) << result.problem().text;
  }
  EXPECT_EQ(store.known({.title = "good"}).track, Marks{});
  EXPECT_FALSE(fs::exists(file));
}

TEST_F(RatingsExchange, AnExportThatCannotBeWholeLeavesTheLastOneAsItWas) {
  const auto expectRefusal = [&](const char* why) {
    put(list, "last");
    const auto before = files();
    for (const auto& result : {exportRatings(store, list), exportRatings(store, "-")}) {
      ASSERT_FALSE(result) << why;
      EXPECT_NE(result.problem().text.find(why), std::string::npos) << result.problem().text;
      EXPECT_EQ(result.problem().text.find('\n'), std::string::npos);
    }
    EXPECT_EQ(contents(list), "last");
    RatingsStore nowhere("");
    EXPECT_FALSE(exportRatings(nowhere, list));
    EXPECT_EQ(files(), before);
  };
  expectRefusal("there is none yet");
  ASSERT_TRUE(importRatings(store, listOf(0, 1000, 20)));
  inStore("PRAGMA user_version = 1000");
  expectRefusal("newer version");
  inStore("PRAGMA user_version = 3");
  overwrite(file, 8 * 4096, std::string(4096, '\0'));
  const std::string damaged = contents(file);
  expectRefusal("malformed");

  const auto report = salvageRatings(store, list);
  ASSERT_TRUE(report) << report.problem().text;
  EXPECT_NE(report->find("; 1 of "), std::string::npos) << *report;
  const auto saved = std::ranges::count(contents(list), '\n');
  EXPECT_TRUE(saved > 800 && saved < 1000) << saved;
  EXPECT_EQ(contents(file), damaged);
  const auto imported = importRatings(other, file);
  ASSERT_TRUE(imported) << imported.problem().text;
  EXPECT_NE(imported->find(" added, 0 changed, 0 unchanged; 1 of "), std::string::npos);
  // Marks whose names are lost are found again when their track is played.
  int found = 0;
  for (int i = 0; i < 1000; ++i) {
    found += other.known({.title = std::to_string(i)}).track.rating == 20;
  }
  EXPECT_GE(found, saved);
}

TEST_F(RatingsExchange, AnExportIsWholeOrLeavesTheLastOneWhateverCallFails) {
  importRatings(store, listOf(0, 5));
  const std::string whole = exported(store);
  const auto present = files();
  int calls = 1;
  for (bool isDone = false; !isDone; ++calls) {
    put(list, "last");
    callsUntilFault = calls;
    isDone = static_cast<bool>(exportRatings(store, list));
    EXPECT_EQ(isDone, std::exchange(callsUntilFault, 0) != 0) << calls;
    // Once it has its name it may be the folder that cannot be synchronised.
    EXPECT_TRUE(contents(list) == whole || (!isDone && contents(list) == "last")) << calls;
    EXPECT_EQ(files(), present) << calls;
  }
  EXPECT_GT(calls, 9) << "five lines, the file, its name, its folder";
}

/// As Quod Libet stores it: names and file names as the bytes of Latin characters.
std::string quodLibetSongs() {
  const auto text = [](const std::string& bytes) {
    return std::string("X") + static_cast<char>(bytes.size()) + std::string(3, '\0') + bytes;
  };
  const auto bytes = [&text](const std::string& latin) {
    return "c_codecs\nencode\n" + text(latin) + text("latin1") + "\x86R";
  };
  const std::string half("G\x3f\xe0\0\0\0\0\0\0", 9);
  const std::string song = std::string("cquodlibet.formats.mp3\nMP3File\n)\x81q\x01(") +
                           bytes("~filename") + bytes("/music/\xC3\x83\xC2\xA4.mp3") +
                           bytes("title") + text("Title") + bytes("artist") + text("A\nB") +
                           bytes("~#length") + "K\x3c" + bytes("~#rating") + half + "u";
  const std::string unrated = std::string("}(") + bytes("~filename") + bytes("/music/b.mp3") + "u";
  return "\x80\x02](" + song + unrated + "e.";
}

TEST_F(RatingsExchange, APlayersLibraryIsReadAndGivesWayToEveryClick) {
  const std::string rhythmbox = R"(<rhythmdb version="2.0">
    <entry type="song"><title>T &amp; U</title><artist>A</artist><album-artist>AA</album-artist>
      <duration>61</duration><location>file:///music/%C3%A4.mp3</location><rating>3.5</rating>
      <keyword/><unknown><title>no</title></unknown></entry>
    <entry type="song"><title>unrated</title><location>file:///music/b.mp3</location></entry>
    <entry type="iradio"><rating>5</rating></entry></rhythmdb>)";
  std::list<Database> held;  // by their players, in the middle of a change
  const auto database = [&](const std::string& column) {
    fs::path path = folder.path() / column;
    const std::string rows = "CREATE TABLE songs (artist, album, albumartist, title, " + column +
                             ", length, rating); INSERT INTO songs VALUES ('A', 'B', '', 'T',"
                             " CAST('file:///music/%C3%A4.mp3' AS BLOB), 61029000000, 0.55),"
                             " ('A', 'B', '', 'T', 'file:///music/b.mp3', 1, -1);"
                             "BEGIN EXCLUSIVE; UPDATE songs SET rating = 0.1";
    EXPECT_EQ(held.emplace_back(opened(path)).execute(rows.c_str()), SQLITE_OK);
    return path;
  };
  const TrackIdentity track{.address = "/music/\u00e4.mp3"};
  const std::tuple<const char*, fs::path, int, const char*> libraries[] = {
      {"rhythmbox:", put(folder.path() / "rhythmbox", rhythmbox), 70, ""},
      {"quodlibet:", put(folder.path() / "quodlibet", quodLibetSongs()), 50,
       R"("artist":"A, B","title":"Title","length":60,"rating":50)"},
      {"strawberry:", database("url"), 55, ""},
      {"clementine:", database("filename"), 55, ""}};
  for (const auto& [player, path, rating, names] : libraries) {
    EXPECT_TRUE(store.setTrackLoved(track, true));
    const auto report = importRatings(store, player + path.native());
    ASSERT_TRUE(report) << report.problem().text;
    EXPECT_TRUE(report->starts_with("Imported 1 rating from " + path.native() + "; 0 ")) << *report;
    EXPECT_EQ(store.known(track).track.rating, rating);
    EXPECT_EQ(store.known({.address = "/music/b.mp3"}).track, Marks{});
    EXPECT_NE(exported(store).find(names), std::string::npos);
    inStore("DELETE FROM marks; DELETE FROM names");
  }
  const auto take = [&](const char* player, const std::string& bytes) {
    const auto report = importRatings(store, player + put(list, bytes).native());
    return report ? *report : report.problem().text;
  };
  ASSERT_TRUE(store.setTrackRating(track, 20));
  EXPECT_TRUE(
      take("rhythmbox:", rhythmbox)
          .ends_with("Imported 0 ratings from " + list + "; 1 track was rated here already"));
  EXPECT_EQ(store.known(track).track.rating, 20);

  const std::string before = exported(store);
  for (const char* player : {"rhythmbox:", "quodlibet:", "strawberry:", "clementine:"}) {
    for (const std::string& wrong : {std::string("no library"), rhythmbox.substr(0, 300),
                                     quodLibetSongs().substr(0, 200), std::string("\x80\x02}.")}) {
      const std::string problem = take(player, wrong);
      EXPECT_TRUE(problem.starts_with("cannot read " + list + ": ")) << player << problem;
      EXPECT_TRUE(problem.ends_with("; nothing was imported")) << problem;
    }
    EXPECT_FALSE(importRatings(store, player + std::string("/nowhere")));
  }
  EXPECT_EQ(exported(store), before);
}

}  // namespace
}  // namespace desktop
