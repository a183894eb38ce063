// A store of ratings in a folder of a test's own, and what lies in its file.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>

#include "desktop/ratings/backups.h"
#include "desktop/ratings/exchange.h"
#include "tests/support/temporary_folder.h"

namespace desktop {

namespace fs = std::filesystem;
using tests::contents;

struct RatingsFixture : testing::Test {
  static fs::path put(const fs::path& path, const std::string& bytes) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << bytes;
    return path;
  }
  /// Writes over the bytes from there on.
  static void overwrite(const fs::path& path, std::size_t offset, const std::string& bytes) {
    std::fstream stream(path, std::ios::in | std::ios::out | std::ios::binary);
    stream.seekp(static_cast<std::streamoff>(offset)) << bytes;
  }
  static Database opened(const fs::path& path) {
    Database database;
    EXPECT_EQ(database.open(path, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE), SQLITE_OK);
    return database;
  }
  void inStore(const char* sql) const { EXPECT_EQ(opened(file).execute(sql), SQLITE_OK); }
  /// The number that is selected in the file; -1 for none.
  std::int64_t selected(const char* sql) const {
    std::int64_t number = -1;
    return opened(file).readInteger(sql, number) == SQLITE_OK ? number : -1;
  }
  bool isSound() const {
    Statement check;
    const Database database = opened(file);
    return check.prepare(database.handle(), "PRAGMA integrity_check") == SQLITE_OK &&
           check.step() == SQLITE_ROW && check.text(0) == "ok";
  }
  /// The rating that somebody finds who opens the store now; -1 for none.
  int rating(const TrackIdentity& track) {
    return RatingsStore(file, messages).known(track).track.rating.value_or(-1);
  }
  bool rate(const TrackIdentity& track, int rating) {
    return RatingsStore(file, messages).setTrackRating(track, rating);
  }
  /// A file to import, with this rating of the tracks "0", "1" and so on.
  std::string listOf(int first, int end, int rating = 40) const {
    std::ofstream stream(folder.path() / "list");
    for (int i = first; i < end; ++i) {
      stream << R"({"kind":"track","rating":)" << rating << R"(,"title":")" << i << "\"}\n";
    }
    return folder.path() / "list";
  }
  std::ptrdiff_t lines() const { return std::ranges::count(messages.str(), '\n'); }

  tests::TemporaryFolder folder;
  const fs::path file = folder.path() / "data/ratings.sqlite";
  std::ostringstream messages;
};

}  // namespace desktop
