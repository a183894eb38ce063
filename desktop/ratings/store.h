// Ratings and love marks that last: one SQLite file under the user's data folder, keyed by track
// and by album, which gives every player ratings.
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <iostream>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "desktop/ratings/entries.h"
#include "desktop/ratings/file.h"
#include "desktop/ratings/library_notes.h"
#include "desktop/result.h"

namespace desktop {

/// The ratings store. Main thread only; several processes may use one file at once.
///
/// A write that answers true is on the disk: each is one commit with full synchronisation, which
/// neither the end of the process nor a power cut undoes. A write that cannot be done answers false
/// and changes nothing; the reason is told once until one is done. Waiting for another process
/// takes at most 0.4 seconds in any five. Nothing read is kept: each question asks the file, which
/// is opened at the first use.
///
/// When the file is moved, replaced or deleted meanwhile, all its entries are merged into what lies
/// under the name then; until that can be done they are read from where they are. The readable
/// entries of a damaged file are carried over into a new one, and it is kept as
/// ratings-damaged-<date>.sqlite. A file of a newer version of the program is read as far as that
/// goes and never written.
class RatingsStore {
 public:
  /// The file is created by the first write, its folder too.
  explicit RatingsStore(std::filesystem::path file, std::ostream& messages = std::cerr);
  ~RatingsStore();
  RatingsStore(const RatingsStore&) = delete;
  RatingsStore& operator=(const RatingsStore&) = delete;

  /// virelune-widget/ratings.sqlite under $XDG_DATA_HOME, else under ~/.local/share; empty when
  /// neither is known.
  static std::filesystem::path defaultFile();

  /// Called after each write of a mark that has been done.
  void setChangeHandler(std::function<void()> changed) { changed_ = std::move(changed); }

  // Reading; nothing set when the store cannot be read or the track cannot be recognised again.
  struct Known {
    Marks track = {};
    Marks album = {};
    std::optional<LibraryNote> note = std::nullopt;  ///< about the track in the player's library
  };
  /// All that there is about a track, as it is at one moment.
  Known known(const TrackIdentity& track, const std::string& player = {});
  /// Reads what known() and namesakes() do, so that it lies in the system's memory afterwards. From
  /// any thread; tells nothing, mends nothing and makes no file.
  static void readAhead(const std::filesystem::path& file, const TrackIdentity& track,
                        const std::string& player);

  // Writing; true once it is on the disk. A rating is limited to 0 … 100.
  bool setTrackRating(const TrackIdentity& track, int rating);
  bool setTrackRating(const TrackIdentity& track, int rating, const std::string& player,
                      const LibraryNote& note);
  bool setTrackLoved(const TrackIdentity& track, bool loved);
  bool setAlbumRating(const TrackIdentity& track, int rating);
  bool setAlbumLoved(const TrackIdentity& track, bool loved);
  /// Notes what a player's library has to do with a track.
  bool note(const TrackIdentity& track, const std::string& player, const LibraryNote& note);

  /// Other tracks in files that are called the same and as long, and the entry of an address that
  /// ends where the track's has '#' or '?', which is how an earlier version kept it.
  std::vector<TrackIdentity> namesakes(const TrackIdentity& track);
  /// Gives a track the marks of another, which is not kept any longer; of two marks the one that
  /// was set later stays. Libraries are met anew.
  bool moveTrack(const TrackIdentity& from, const TrackIdentity& to);

  /// Copies every entry out, as they are at one moment. Tells nothing, mends nothing and makes no
  /// file: a store that is missing, damaged or of a newer version is a problem.
  std::optional<StoreProblem> copyTo(EntryCollection& copy);

  /// Takes entries over in one commit: a mark that only one side has is kept, and of two the one
  /// that was set later (the store's when neither is).
  Result<MergeCounts> merge(EntryCollection& offered);

  /// Puts these entries in the place of all others in one commit, within which `setAside` has kept
  /// the file as it is; nothing is replaced unless that answers SQLITE_OK.
  Result<> replaceAll(EntryCollection& entries, const std::function<int()>& setAside);

  const std::filesystem::path& file() const { return file_; }

 private:
  struct Connection;
  enum class Access { copy, read, write };
  using Work = std::function<int(Connection&)>;  ///< answers a result code of the database
  using Outcome = std::optional<StoreProblem>;   ///< none when all is well

  void read(const Work& work);
  bool set(const RatingsRecord& record, const Work& more = {});
  bool write(const Work& work);
  Outcome perform(Access access, const Work& work);
  Outcome performInTransaction(const Work& work);
  static int inTransaction(Connection& connection, const Work& work);
  Outcome connect(Access access);
  Outcome open(Access access);
  Outcome follow(std::unique_ptr<Connection> moved, Access access);
  Outcome carryOver(Connection& moved);
  void takeStrayLog(const std::filesystem::path& log);
  bool mend(const StoreProblem& damage);
  void letGo();
  std::string textOf(const StoreProblem& problem) const;
  void tell(StoreProblem::Kind kind, const std::string& message);
  void say(const std::string& message);

  std::filesystem::path file_;
  std::ostream& messages_;
  std::set<StoreProblem::Kind> told_;  ///< since the last successful write
  std::function<void()> changed_;
  Patience patience_;
  Access readingAccess_ = Access::read;
  std::unique_ptr<Connection> connection_;
};

}  // namespace desktop
