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
#include <span>
#include <string>

#include "desktop/ratings/file.h"
#include "desktop/ratings/identity.h"

namespace desktop {

/// What the user has set for a track or an album.
struct Marks {
  std::optional<int> rating =
      std::nullopt;  ///< 0 to 100; none when never set, 0 when set to no stars
  std::optional<bool> loved = std::nullopt;  ///< none when never set
  bool operator==(const Marks&) const = default;
};

/// One entry of the store. An album's identity has only the album artist and the album.
struct RatingsRecord {
  enum class Kind { track, album };
  Kind kind = Kind::track;
  TrackIdentity identity;
  Marks marks;
  // When each mark was set, in seconds since 1970-01-01 00:00:00 UTC; 0 when unknown.
  std::int64_t ratingChanged = 0;
  std::int64_t lovedChanged = 0;
  bool operator==(const RatingsRecord&) const = default;
};

/// The ratings store. Main thread only; several processes may use one file at once.
///
/// A write that answers true is on the disk: each is one commit in write-ahead mode with full
/// synchronisation, which neither the end of the process nor a power cut undoes. A write that
/// cannot be done answers false and changes nothing; the reason is told once until one is done.
/// Waiting for another process takes at most 0.4 seconds in any five. Nothing read is kept: each
/// question asks the file. The file is opened at the first use and found again when it was moved
/// away.
///
/// A damaged file is renamed to ratings-damaged-<date>.sqlite and a new one begins. A file of a
/// newer version of the program is neither read nor written.
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

  // Reading; nothing set when the store cannot be read or the track cannot be recognised again.
  Marks trackMarks(const TrackIdentity& track);
  Marks albumMarks(const TrackIdentity& track);

  // Writing; true once it is on the disk. A rating is limited to 0 … 100.
  bool setTrackRating(const TrackIdentity& track, int rating);
  bool setTrackLoved(const TrackIdentity& track, bool loved);
  bool setAlbumRating(const TrackIdentity& track, int rating);
  bool setAlbumLoved(const TrackIdentity& track, bool loved);

  /// Hands out every entry, in a stable order; false when the store cannot be read. A store that
  /// does not exist yet is empty.
  bool forEach(const std::function<void(const RatingsRecord&)>& visit);

  struct MergeCounts {
    std::int64_t added = 0;
    std::int64_t changed = 0;
    std::int64_t unchanged = 0;
  };
  /// Takes entries over in one commit: a mark that only one side has is kept, and of two that
  /// differ the one that was set later (the store's when neither is). Entries that cannot be
  /// recognised again are passed over as unchanged. None, and nothing changed, when the store
  /// cannot be written.
  std::optional<MergeCounts> merge(std::span<const RatingsRecord> records);

 private:
  struct Connection;
  enum class Access { read, write };
  using Work = std::function<int(Connection&)>;  ///< answers a result code of the database

  Marks marks(const std::optional<std::string>& key);
  bool set(const RatingsRecord& record);
  bool perform(Access access, const Work& work);
  bool performInTransaction(const Work& work);
  std::optional<StoreProblem> connect(Access access);
  bool setAside(const StoreProblem& problem);
  void tell(StoreProblem::Kind kind, const std::string& message);

  std::filesystem::path file_;
  std::ostream& messages_;
  std::set<StoreProblem::Kind> told_;  ///< since the last successful write
  Patience patience_;
  std::unique_ptr<Connection> connection_;
};

}  // namespace desktop
