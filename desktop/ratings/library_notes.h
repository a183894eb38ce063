// What the libraries of players have to do with the ratings kept here: for each track and player
// what that player said of it, so that a rating given there later is told from one that is older.
#pragma once

#include <optional>
#include <string>

#include "desktop/ratings/sqlite.h"

namespace desktop {

/// About one track in one player's library.
struct LibraryNote {
  /// What became of our rating there.
  enum class State { none, pending, written, refused };
  std::optional<int> said = std::nullopt;  ///< 0 to 100; what the player said last, of its own
  State state = State::none;
  bool awaitsOurs = false;  ///< what it says next may be our rating, as it rounds it
  bool operator==(const LibraryNote&) const = default;
};

/// The notes of one open database, by the digest of the track and the name of the player. A
/// database of another version may have none. Must not outlive its database.
class LibraryNotes {
 public:
  static constexpr const char* table =
      "CREATE TABLE libraries ("
      "  digest BLOB NOT NULL,"
      "  player TEXT NOT NULL,"
      "  said INTEGER,"            // 0 to 100
      "  state INTEGER NOT NULL,"  // 0 none, 1 pending, 2 written, 3 refused
      "  awaits_ours INTEGER NOT NULL,"
      "  PRIMARY KEY (digest, player)"
      ") WITHOUT ROWID";

  int prepare(Database& database);
  /// The note stays none when there is none.
  int read(const std::string& digest, const std::string& player, std::optional<LibraryNote>& note);
  int write(const std::string& digest, const std::string& player, const LibraryNote& note);
  /// Forgets all about a track.
  int remove(const std::string& digest);

 private:
  bool hasTable_ = false;
  Statement reading_;
  Statement writing_;
  Statement removing_;
};

}  // namespace desktop
