#include "desktop/ratings/rescue.h"

#include "tests/desktop/ratings/ratings_fixture.h"

namespace desktop {
namespace {

RescueSource sourceOf(const std::string& bytes) {
  return {static_cast<std::int64_t>(bytes.size()),
          [&bytes](std::int64_t offset, std::span<std::uint8_t> wanted) {
            const auto begin = static_cast<std::size_t>(offset);
            if (begin + wanted.size() > bytes.size()) return false;
            std::copy_n(bytes.begin() + offset, wanted.size(), wanted.begin());
            return true;
          }};
}

/// What a rescue brings.
struct Rescued {
  std::set<std::string> marks, names;
  PageCounts pages;
};

Rescued rescued(const std::string& bytes) {
  Rescued result;
  const RescueSource source = sourceOf(bytes);
  result.pages = rescueRows(source, nullptr, [&](const RescuedRow& row) {
    (row.hasMarks ? result.marks : result.names).insert(row.digest);
    return true;
  });
  return result;
}

struct RatingsRescue : RatingsFixture {
  /// The bytes of a store with so many entries.
  std::string store(int entries, std::size_t nameLength, const char* pageSize = "4096") {
    fs::remove(file);
    put(file, "");
    Database database = opened(file);
    EXPECT_EQ(database.execute((std::string("PRAGMA page_size = ") + pageSize).c_str()), SQLITE_OK);
    EXPECT_EQ(makeEntryTables(database), SQLITE_OK);
    Entries table;
    EXPECT_EQ(table.prepare(database), SQLITE_OK);
    database.execute("BEGIN");
    for (int i = 0; i < entries; ++i) {
      const RatingsRecord record{
          .identity = {.artist = std::string(nameLength, 'a'), .title = std::to_string(i)},
          .marks = {.rating = i % 101, .loved = i % 2 == 0},
          .ratingChanged = 1'800'000'000,
          .lovedChanged = 1'800'000'000};
      EXPECT_EQ(table.set(*digestOf(record), record), SQLITE_OK);
    }
    database.execute("INSERT INTO libraries VALUES (zeroblob(16), 'mpd', 60, 2, 0); COMMIT");
    return contents(file);
  }
};

TEST_F(RatingsRescue, EachPageThatIsLostCostsOnlyWhatLiesOnIt) {
  constexpr std::size_t entries = 1000;
  const std::string sound = store(entries, 80);
  const Rescued all = rescued(sound);
  EXPECT_EQ(all.marks.size(), entries);
  EXPECT_EQ(all.names.size(), entries);
  EXPECT_EQ(all.pages.unreadable, 0);
  constexpr std::size_t pageSize = 4096;
  ASSERT_GT(sound.size(), 50 * pageSize);
  for (const char filling : {'\0', '\xFF'}) {
    std::size_t lostMarks = 0, lostNames = 0;
    for (std::size_t page = 0; page < sound.size() / pageSize; ++page) {
      std::string damaged = sound;
      damaged.replace(page * pageSize, pageSize, pageSize, filling);
      const Rescued rest = rescued(damaged);
      EXPECT_EQ(rest.pages.unreadable, 1) << page;
      lostMarks += entries - rest.marks.size();
      lostNames += entries - rest.names.size();
    }
    // Every row lies on one page, so that it is lost once.
    EXPECT_EQ(lostMarks, entries);
    EXPECT_EQ(lostNames, entries);
  }
  EXPECT_GT(rescued(sound.substr(0, sound.size() / 2)).marks.size(), entries / 4) << "cut off";
  inStore("UPDATE marks SET rating = 101 WHERE rating = 7");
  EXPECT_LT(rescued(contents(file)).marks.size(), entries) << "rows that make no sense";
}

TEST_F(RatingsRescue, WithoutItsFirstPageAStoreIsMendedToo) {
  for (const std::size_t page : {0U, 1U, 2U}) {
    store(3000, 30);
    overwrite(file, page * 4096, std::string(4096, '\xFF'));
    const auto readable = rescued(contents(file)).marks.size();
    EXPECT_GT(readable, 2800U);
    messages.str("");
    EXPECT_TRUE(rate({.title = "new"}, 20));
    EXPECT_NE(messages.str().find(std::to_string(readable) + " entries were carried over, 1 "),
              std::string::npos)
        << messages.str();
    EXPECT_EQ(selected("SELECT count(*) FROM marks"), static_cast<std::int64_t>(readable) + 1);
  }
}

}  // namespace
}  // namespace desktop
