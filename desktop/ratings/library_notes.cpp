#include "desktop/ratings/library_notes.h"

#include <algorithm>

namespace desktop {

namespace {

constexpr const char* readNote =
    "SELECT said, state, awaits_ours FROM libraries WHERE digest = ?1 AND player = ?2";
constexpr const char* writeNote =
    "INSERT OR REPLACE INTO libraries (digest, player, said, state, awaits_ours)"
    " VALUES (?1, ?2, ?3, ?4, ?5)";

constexpr const char* removeNotes = "DELETE FROM libraries WHERE digest = ?1";

LibraryNote::State stateFromNumber(std::int64_t number) {
  constexpr auto last = static_cast<std::int64_t>(LibraryNote::State::refused);
  return static_cast<LibraryNote::State>(std::clamp<std::int64_t>(number, 0, last));
}

}  // namespace

int LibraryNotes::prepare(Database& database) {
  const int result = reading_.prepare(database.handle(), readNote);
  hasTable_ = result == SQLITE_OK;
  if ((result & 0xFF) == SQLITE_ERROR) return SQLITE_OK;  // there is no such table
  if (!hasTable_) return result;
  const int prepared = writing_.prepare(database.handle(), writeNote);
  return prepared == SQLITE_OK ? removing_.prepare(database.handle(), removeNotes) : prepared;
}

int LibraryNotes::read(const std::string& digest, const std::string& player,
                       std::optional<LibraryNote>& note) {
  if (!hasTable_) return SQLITE_OK;
  const StatementRun run(reading_);
  reading_.bindBytes(1, digest);
  reading_.bind(2, player);
  const int result = reading_.step();
  if (result != SQLITE_ROW) return result == SQLITE_DONE ? SQLITE_OK : result;
  note.emplace();
  if (const auto said = reading_.integer(0)) {
    note->said = static_cast<int>(std::clamp<std::int64_t>(*said, 0, 100));
  }
  note->state = stateFromNumber(reading_.integer(1).value_or(0));
  note->awaitsOurs = reading_.integer(2).value_or(0) != 0;
  return SQLITE_OK;
}

int LibraryNotes::write(const std::string& digest, const std::string& player,
                        const LibraryNote& note) {
  if (!hasTable_) return SQLITE_OK;
  const StatementRun run(writing_);
  writing_.bindBytes(1, digest);
  writing_.bind(2, player);
  writing_.bind(3, note.said);
  writing_.bind(4, static_cast<std::int64_t>(note.state));
  writing_.bind(5, note.awaitsOurs ? 1 : 0);
  const int result = writing_.step();
  return result == SQLITE_DONE ? SQLITE_OK : result;
}

int LibraryNotes::remove(const std::string& digest) {
  if (!hasTable_) return SQLITE_OK;
  const StatementRun run(removing_);
  removing_.bindBytes(1, digest);
  const int result = removing_.step();
  return result == SQLITE_DONE ? SQLITE_OK : result;
}

}  // namespace desktop
