// The ratings store: what a write costs beside a durable SQLite commit, and what reading costs as
// the store grows. Its files lie beside the program, which must be on a real disk.
#include <sqlite3.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <random>
#include <string>
#include <vector>

#include "desktop/ratings/sqlite.h"
#include "desktop/ratings/store.h"

namespace {

using desktop::Database;
using desktop::RatingsStore;
using desktop::TrackIdentity;

/// Microseconds that one call takes.
template <class Call>
double microseconds(Call call) {
  const auto begin = std::chrono::steady_clock::now();
  call();
  return std::chrono::duration<double, std::micro>(std::chrono::steady_clock::now() - begin)
      .count();
}

double median(std::vector<double> values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

/// The figures of one program.
class Figures {
 public:
  void note(const std::string& name, double value, const char* unit) {
    std::printf("%-58s %10.2f %s\n", name.c_str(), value, unit);
  }
  void check(const std::string& name, double value, const char* unit, double limit) {
    const bool isMet = value <= limit;
    std::printf("%-58s %10.2f %s  %s %g\n", name.c_str(), value, unit, isMet ? "within" : "MISSED",
                limit);
    missed_ = missed_ || !isMet;
  }
  /// The program's exit status: 1 when a limit was missed.
  int exitStatus() const { return missed_ ? 1 : 0; }

 private:
  bool missed_ = false;
};

class BenchFolder {
 public:
  BenchFolder() { clear(); }
  ~BenchFolder() { clear(); }
  BenchFolder(const BenchFolder&) = delete;
  BenchFolder& operator=(const BenchFolder&) = delete;
  std::filesystem::path file(const std::string& name) const {
    std::filesystem::create_directories(path_);
    return path_ / name;
  }

 private:
  void clear() const { std::filesystem::remove_all(path_); }
  std::filesystem::path path_ =
      std::filesystem::read_symlink("/proc/self/exe").parent_path() / "ratings-bench-data";
};

[[noreturn]] void giveUp(const char* message) {
  std::cerr << "ratings-bench: " << message << '\n';
  std::exit(1);
}

TrackIdentity track(std::size_t number) {
  const std::string digits = std::to_string(10'000'000 + number);
  return {
      .address = "/home/user/Music/" + digits.substr(0, 6) + " Artist/Album/" + digits + ".flac",
      .artist = digits.substr(0, 6) + " Artist",
      .album = "Album",
      .title = "Title " + digits,
      .length = 200};
}

/// One durable commit of the least there is to keep.
class PlainCommit {
 public:
  /// With these settings, else with SQLite's own.
  explicit PlainCommit(const std::filesystem::path& file, const char* settings = "") {
    const bool isReady =
        database_.open(file, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE) == SQLITE_OK &&
        database_.execute(settings) == SQLITE_OK &&
        database_.execute("CREATE TABLE t (key TEXT PRIMARY KEY, rating INTEGER) WITHOUT ROWID") ==
            SQLITE_OK &&
        write_.prepare(database_.handle(), "INSERT OR REPLACE INTO t VALUES (?1, ?2)") == SQLITE_OK;
    if (!isReady) giveUp("cannot make a database");
  }
  void write(const std::string& key, int rating) {
    const desktop::StatementRun run(write_);
    write_.bind(1, key);
    write_.bind(2, rating);
    if (write_.step() != SQLITE_DONE) giveUp("cannot write to the database");
  }

 private:
  Database database_;
  desktop::Statement write_;
};

void measureWriting(const BenchFolder& folder, Figures& figures) {
  PlainCommit plain(folder.file("plain.sqlite"));
  PlainCommit logged(folder.file("logged.sqlite"),
                     "PRAGMA journal_mode = WAL; PRAGMA synchronous = FULL");
  RatingsStore store(folder.file("store.sqlite"));
  const auto expect = [](bool isWritten) {
    if (!isWritten) giveUp("a rating was not written");
  };
  std::vector<double> commits, loggedCommits, ratings, clicks;
  // Turn by turn, and in changing order, so that what else the disk does falls upon all of them.
  for (int turn = 0; turn < 300; ++turn) {
    const TrackIdentity played = track(static_cast<std::size_t>(turn % 20));
    for (int step = 0; step < 4; ++step) {
      switch (turn % 2 == 0 ? step : 3 - step) {
        case 0:
          commits.push_back(microseconds([&] { plain.write(played.address, turn % 101); }));
          break;
        case 1:
          loggedCommits.push_back(microseconds([&] { logged.write(played.address, turn % 101); }));
          break;
        case 2:
          ratings.push_back(
              microseconds([&] { expect(store.setTrackRating(played, turn % 101)); }));
          break;
        default:
          clicks.push_back(microseconds([&] {
            expect(store.setTrackRating(played, (turn + 50) % 101));
            expect(store.setTrackLoved(played, turn / 20 % 2 == 0));
          }));
      }
    }
  }
  const double commit = median(commits);
  figures.note("one durable SQLite commit", commit, "us");
  figures.note("the same in write-ahead mode", median(loggedCommits), "us");
  figures.note("a rating written", median(ratings), "us");
  figures.check("a rating written, in commits", median(ratings) / commit, "x", 2);
  figures.check("a rating and a love mark, two commits, in commits", median(clicks) / commit, "x",
                4);
}

double readingTime(const BenchFolder& folder, std::size_t tracks) {
  const std::filesystem::path file = folder.file(std::to_string(tracks) + ".sqlite");
  {
    desktop::EntryCollection records;
    desktop::MergeCounts counts;
    if (records.makeEmpty() != SQLITE_OK) giveUp("no temporary file");
    for (std::size_t i = 0; i < tracks; ++i) {
      records.add({.identity = track(i),
                   .marks = {.rating = static_cast<int>(i % 101), .loved = i % 2 == 0}},
                  counts);
    }
    if (!RatingsStore(file).merge(records)) giveUp("the tracks were not written");
  }
  RatingsStore store(file);
  std::mt19937 random(1);
  constexpr std::size_t readsAtOnce = 100;
  std::vector<TrackIdentity> played(readsAtOnce);
  std::vector<double> times;
  for (int turn = 0; turn < 300; ++turn) {
    for (TrackIdentity& each : played) each = track(random() % tracks);
    times.push_back(microseconds([&] {
                      for (const TrackIdentity& each : played) {
                        if (!store.known(each).track.rating) giveUp("a rating is not there");
                      }
                    }) /
                    readsAtOnce);
  }
  return median(times);
}

void measureReading(const BenchFolder& folder, Figures& figures) {
  const double few = readingTime(folder, 10);
  figures.note("rating and love read among 10 tracks", few, "us");
  for (const std::size_t tracks : {std::size_t{1'000}, std::size_t{1'000'000}}) {
    const double time = readingTime(folder, tracks);
    const std::string name = "among " + std::to_string(tracks) + " tracks";
    figures.note("rating and love read " + name, time, "us");
    figures.check(name + ", beside 10 tracks", time / few, "x", 2);
  }
}

}  // namespace

int main() {
  const BenchFolder folder;
  Figures figures;
  measureWriting(folder, figures);
  measureReading(folder, figures);
  return figures.exitStatus();
}
