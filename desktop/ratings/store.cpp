#include "desktop/ratings/store.h"

#include <QtCore/QString>
#include <array>
#include <ctime>

#include "desktop/files/user_folders.h"
#include "desktop/ratings/mending.h"
#include "platform/foundation/text.h"

namespace desktop {

namespace {

using Kind = StoreProblem::Kind;

std::string counted(std::int64_t number, const char* one, const char* several) {
  return std::to_string(number) + (number == 1 ? one : several);
}

}  // namespace

/// The open file with its statements, which must be gone before it is closed.
struct RatingsStore::Connection {
  Database database;
  Entries entries;
  LibraryNotes notes;
  /// Nobody can write the file, so that changes would go unnoticed, or it is in write-ahead mode,
  /// which it can leave only while few have it open.
  bool isForOneRequest = false;
};

RatingsStore::RatingsStore(std::filesystem::path file, std::ostream& messages)
    : file_(std::move(file)), messages_(messages) {}

RatingsStore::~RatingsStore() {
  if (connection_) connect(Access::read);  // carries over what lies in a file that was moved
}

std::filesystem::path RatingsStore::defaultFile() {
  const std::filesystem::path folder = userDataFolder();
  return folder.empty() ? folder : folder / "virelune-widget" / "ratings.sqlite";
}

bool RatingsStore::setTrackRating(const TrackIdentity& track, int rating) {
  return set({RatingsRecord::Kind::track, track, {.rating = rating}});
}

bool RatingsStore::setTrackRating(const TrackIdentity& track, int rating, const std::string& player,
                                  const LibraryNote& note) {
  const RatingsRecord record{RatingsRecord::Kind::track, track, {.rating = rating}};
  const auto digest = digestOf(record);
  return digest && set(record, [&](Connection& connection) {
           return connection.notes.write(*digest, player, note);
         });
}

bool RatingsStore::note(const TrackIdentity& track, const std::string& player,
                        const LibraryNote& note) {
  const auto digest = digestOf({RatingsRecord::Kind::track, track});
  return digest && write([&](Connection& connection) {
           return connection.notes.write(*digest, player, note);
         });
}

RatingsStore::Known RatingsStore::known(const TrackIdentity& track, const std::string& player) {
  const auto digest = digestOf({RatingsRecord::Kind::track, track});
  const auto albumDigest = digestOf({RatingsRecord::Kind::album, track});
  Known known;
  if (!digest && !albumDigest) return known;
  read([&](Connection& connection) {
    const Transaction reading(connection.database, Transaction::Kind::read);
    RatingsRecord record, albumRecord;
    known = {};
    int result = reading.begun();
    if (result == SQLITE_OK && digest) result = connection.entries.readMarks(*digest, record);
    if (result == SQLITE_OK && digest) result = connection.notes.read(*digest, player, known.note);
    if (result == SQLITE_OK && albumDigest) {
      result = connection.entries.readMarks(*albumDigest, albumRecord);
    }
    known.track = record.marks;
    known.album = albumRecord.marks;
    return result;
  });
  return known;
}

void RatingsStore::readAhead(const std::filesystem::path& file, const TrackIdentity& track,
                             const std::string& player) {
  std::ostream nobody(nullptr);
  RatingsStore store(file, nobody);
  store.readingAccess_ = Access::copy;
  store.known(track, player);
  store.namesakes(track);
  store.connection_.reset();
}

bool RatingsStore::setTrackLoved(const TrackIdentity& track, bool loved) {
  return set({RatingsRecord::Kind::track, track, {.loved = loved}});
}

bool RatingsStore::setAlbumRating(const TrackIdentity& track, int rating) {
  return set({RatingsRecord::Kind::album, track, {.rating = rating}});
}

bool RatingsStore::setAlbumLoved(const TrackIdentity& track, bool loved) {
  return set({RatingsRecord::Kind::album, track, {.loved = loved}});
}

std::vector<TrackIdentity> RatingsStore::namesakes(const TrackIdentity& track) {
  const auto own = digestOf({RatingsRecord::Kind::track, track});
  const auto address = lastingAddress(track);
  if (!own || !address || !address->starts_with("file:")) return {};
  const std::string path = pathOfFileAddress(*address);
  std::vector<std::string> cutDigests;
  for (auto at = path.find_first_of("#?"); at != std::string::npos;
       at = path.find_first_of("#?", at + 1)) {
    const auto digest = digestOf({RatingsRecord::Kind::track, {.address = path.substr(0, at)}});
    if (digest) cutDigests.push_back(*digest);
  }
  const auto title = QString::fromStdString(track.title);
  const std::array titles{platform::repairedUTF8(track.title),
                          title.normalized(QString::NormalizationForm_C).toStdString(),
                          title.normalized(QString::NormalizationForm_D).toStdString()};
  std::vector<TrackIdentity> titled, cut;
  perform(readingAccess_, [&](Connection& connection) {
    titled.clear();
    cut.clear();
    int result = connection.entries.readTracksTitled(titles, wholeSeconds(track.length), titled);
    for (const std::string& digest : cutDigests) {
      if (result == SQLITE_OK) result = connection.entries.readNames(digest, cut);
    }
    return result;
  });
  std::erase_if(titled, [&](const TrackIdentity& other) {
    return !other.address.starts_with("file:") || other.address == address ||
           !areNamesakes(other, track);
  });
  titled.insert(titled.end(), cut.begin(), cut.end());
  return titled;
}

bool RatingsStore::moveTrack(const TrackIdentity& from, const TrackIdentity& to) {
  const auto source = digestOf({RatingsRecord::Kind::track, from});
  const auto target = digestOf({RatingsRecord::Kind::track, to});
  return source && target && source != target && write([&](Connection& connection) {
           const int result =
               connection.entries.move(*source, *target, {RatingsRecord::Kind::track, to});
           return result == SQLITE_OK ? connection.notes.remove(*source) : result;
         });
}

std::optional<StoreProblem> RatingsStore::copyTo(EntryCollection& copy) {
  auto problem = perform(Access::copy, [&](Connection& connection) {
    auto version = TablesVersion::older;
    int result = readTablesVersion(connection.database, version);
    if (result == SQLITE_OK && version == TablesVersion::newer) result = newerTables;
    if (result == SQLITE_OK) result = copy.copyFrom(connection.database);
    return result == SQLITE_OK ? copy.check() : result;
  });
  if (problem) problem->text = textOf(*problem);
  return problem;
}

Result<MergeCounts> RatingsStore::merge(EntryCollection& offered) {
  MergeCounts counts;
  const auto problem = performInTransaction([&](Connection& connection) {
    counts = {};
    return connection.entries.mergeAll(offered.database, counts);
  });
  if (problem) return Problem{textOf(*problem)};
  return counts;
}

Result<> RatingsStore::replaceAll(EntryCollection& entries, const std::function<int()>& setAside) {
  const auto problem = performInTransaction([&](Connection& connection) {
    MergeCounts counts;
    int result = setAside();
    if (result == SQLITE_OK) result = connection.entries.removeAll();
    if (result == SQLITE_OK) result = connection.entries.mergeAll(entries.database, counts);
    return result;
  });
  if (problem) return Problem{textOf(*problem)};
  return {};
}

void RatingsStore::read(const Work& work) {
  const auto problem = perform(readingAccess_, work);
  if (problem && problem->kind != Kind::absent) tell(problem->kind, textOf(*problem));
}

bool RatingsStore::set(const RatingsRecord& record, const Work& more) {
  const auto digest = digestOf(record);
  if (!digest) return false;
  RatingsRecord dated = record;
  dated.ratingChanged = dated.lovedChanged = static_cast<std::int64_t>(std::time(nullptr));
  const bool isDone = write([&](Connection& connection) {
    const int result = connection.entries.set(*digest, dated);
    return result == SQLITE_OK && more ? more(connection) : result;
  });
  if (isDone && changed_) changed_();
  return isDone;
}

bool RatingsStore::write(const Work& work) {
  const auto problem = performInTransaction(work);
  if (problem) tell(problem->kind, textOf(*problem));
  if (!problem) told_.clear();
  return !problem;
}

RatingsStore::Outcome RatingsStore::performInTransaction(const Work& work) {
  return perform(Access::write,
                 [&](Connection& connection) { return inTransaction(connection, work); });
}

int RatingsStore::inTransaction(Connection& connection, const Work& work) {
  Transaction transaction(connection.database, Transaction::Kind::write);
  if (transaction.begun() != SQLITE_OK) return transaction.begun();
  auto version = TablesVersion::older;
  int result = readTablesVersion(connection.database, version);
  if (result == SQLITE_OK && version == TablesVersion::newer) result = newerTables;
  if (result == SQLITE_OK) result = work(connection);
  return result == SQLITE_OK ? transaction.commit() : result;
}

RatingsStore::Outcome RatingsStore::perform(Access access, const Work& work) {
  Outcome problem;
  // Another trial when the file is found to be damaged, or was moved meanwhile.
  for (int trial = 0; trial < 3; ++trial) {
    problem = connect(access);
    const bool isConnected = !problem;
    if (isConnected) {
      // A file that was copied over this one may count as many changes, which is all that the
      // database compares its memory with.
      sqlite3_db_release_memory(connection_->database.handle());
      problem = problemWithResult(connection_->database, work(*connection_));
      // What was written went with the file: it is written again in the place of that.
      const bool isGone = access == Access::write && connection_->database.hasMoved();
      if (isGone && (!problem || problem->kind == Kind::moved)) {
        problem = StoreProblem{Kind::moved, "its file is moved again and again"};
        continue;
      }
      auto version = TablesVersion::older;
      if (problem && readTablesVersion(connection_->database, version) == SQLITE_OK &&
          version == TablesVersion::newer) {
        problem = problemWithResult(connection_->database, newerTables);
      }
    }
    if (!problem) {
      if (connection_->isForOneRequest) letGo();
      return problem;
    }
    if (problem->kind == Kind::damaged && access != Access::copy && mend(*problem)) continue;
    // The cause may pass; the next request begins afresh.
    if (!isConnected || problem->kind != Kind::busy) letGo();
    return problem;
  }
  return problem;
}

RatingsStore::Outcome RatingsStore::connect(Access access) {
  if (connection_ == nullptr) return open(access);
  if (!connection_->database.hasMoved()) return std::nullopt;
  return follow(std::move(connection_), access);
}

RatingsStore::Outcome RatingsStore::open(Access access) {
  std::filesystem::path strayLog;
  if (access == Access::write) {
    const auto kept = keepStrayLog(file_, patience_);
    if (!kept) return StoreProblem{Kind::failed, kept.problem().text};
    strayLog = *kept;
  }
  connection_ = std::make_unique<Connection>();
  auto problem = openRatingsFile(file_, access == Access::write, patience_, connection_->database);
  if (problem && problem->kind == Kind::failed && access != Access::write) {
    auto unwritable = std::make_unique<Connection>();
    if (!openUnwritableRatingsFile(file_, unwritable->database)) {
      unwritable->isForOneRequest = true;
      connection_ = std::move(unwritable);
      problem.reset();
    }
  }
  if (!problem) {
    int result = connection_->entries.prepare(connection_->database);
    if (result == SQLITE_OK) result = connection_->notes.prepare(connection_->database);
    problem = problemWithResult(connection_->database, result);
    // Statements that make no sense to it: tables of ours are missing.
    if ((result & 0xFF) == SQLITE_ERROR) {
      auto version = TablesVersion::older;
      readTablesVersion(connection_->database, version);
      problem->kind = version == TablesVersion::newer ? Kind::newer : Kind::damaged;
    }
    if (isInLogMode(connection_->database)) connection_->isForOneRequest = true;
  }
  if (!strayLog.empty()) takeStrayLog(strayLog);
  return problem;
}

/// Goes on in what lies under the name now, with all that the file has that was there before; this
/// is kept, and read from, until that could be done.
RatingsStore::Outcome RatingsStore::follow(std::unique_ptr<Connection> moved, Access access) {
  Outcome problem;
  for (int trial = 0; trial < 2; ++trial) {
    problem = open(Access::write);
    if (!problem) problem = carryOver(*moved);
    if (!problem || problem->kind != Kind::damaged || !mend(*problem)) break;
  }
  if (!problem) return std::nullopt;
  connection_ = std::move(moved);
  return access == Access::read ? std::nullopt : problem;
}

RatingsStore::Outcome RatingsStore::carryOver(Connection& moved) {
  MergeCounts counts;
  const int result = inTransaction(*connection_, [&](Connection& connection) {
    int merged = connection.entries.mergeAll(moved.database, counts);
    const auto problem = problemWithResult(moved.database, merged);
    if (problem && problem->kind == Kind::damaged) {
      PageCounts pages;
      const RescueSource source = rescueSourceFromDatabase(moved.database);
      merged = rescueInto(connection.entries, source, nullptr, counts, pages);
    }
    return merged;
  });
  auto problem = problemWithResult(connection_->database, result);
  if (!problem && counts.added + counts.changed > 0) {
    say("the ratings store was moved or replaced while it was open; " +
        counted(counts.added + counts.changed, " entry was", " entries were") +
        " carried over into " + file_.native());
  }
  return problem;
}

void RatingsStore::takeStrayLog(const std::filesystem::path& log) {
  MergeCounts counts;
  const auto source = rescueSourceFromFile(log);
  const bool isTaken = source && connection_ && connection_->database &&
                       inTransaction(*connection_, [&](Connection& connection) {
                         PageCounts pages;
                         return rescueInto(connection.entries, *source, nullptr, counts, pages);
                       }) == SQLITE_OK;
  say("the log of a ratings store that is missing is kept as " + log.native() + "; " +
      (isTaken ? counted(counts.added, " entry was", " entries were") + " carried over"
               : "its entries can be taken over with --import-ratings"));
}

/// True when a sound file lies under the name afterwards.
bool RatingsStore::mend(const StoreProblem& damage) {
  Database damaged = std::move(connection_->database);
  connection_.reset();
  const auto mended = mendRatingsFile(file_, patience_, std::move(damaged));
  if (!mended) {
    tell(Kind::damaged, "the ratings store is damaged (" + damage.text +
                            ") and cannot be mended: " + mended.problem().text + " (" +
                            file_.native() + ")");
    return false;
  }
  if (!mended->kept.empty()) {
    say("the ratings store was damaged (" + damage.text + "); it is kept as " +
        mended->kept.native() + ", " + counted(mended->entries, " entry was", " entries were") +
        " carried over, " + std::to_string(mended->pages.unreadable) + " of its " +
        counted(mended->pages.all, " page", " pages") + " could not be read");
  }
  return true;
}

/// Closes the file, unless it was moved and holds what is not carried over yet.
void RatingsStore::letGo() {
  if (connection_ && !connection_->database.hasMoved()) connection_.reset();
}

std::string RatingsStore::textOf(const StoreProblem& problem) const {
  const std::string place = file_.empty() ? "" : " (" + file_.native() + ")";
  return "cannot use the ratings store: " + problem.text + place;
}

void RatingsStore::tell(Kind kind, const std::string& message) {
  if (told_.insert(kind).second) say(message);
}

void RatingsStore::say(const std::string& message) {
  messages_ << "virelune-widget: " << message << std::endl;
}

}  // namespace desktop
