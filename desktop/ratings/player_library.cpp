#include "desktop/ratings/player_library.h"

#include <stdlib.h>
#include <sys/stat.h>

#include <QtCore/QFile>
#include <QtCore/QXmlStreamReader>
#include <array>
#include <cmath>
#include <cstring>

#include "desktop/files/user_folders.h"
#include "desktop/ratings/pickle.h"
#include "desktop/ratings/sqlite.h"

namespace desktop {

namespace {

namespace fs = std::filesystem;
using Player = PlayerLibrary::Player;
using Visit = std::function<void(const RatingsRecord&)>;

fs::path usualFile(Player player) {
  switch (player) {
    case Player::rhythmbox:
      return userDataFolder() / "rhythmbox/rhythmdb.xml";
    case Player::quodLibet: {
      const char* home = std::getenv("HOME");
      const fs::path former = fs::path(home != nullptr ? home : "") / ".quodlibet/songs";
      std::error_code error;
      return fs::exists(former, error) ? former : userConfigFolder() / "quodlibet/songs";
    }
    case Player::strawberry:
      return userDataFolder() / "strawberry/strawberry/strawberry.db";
    case Player::clementine:
      break;
  }
  return userConfigFolder() / "Clementine/clementine.db";
}

/// A rating from 0 to 1; tracks without stars are not handed out.
void visitRated(const TrackIdentity& track, double rating, const Visit& visit) {
  if (!(rating > 0) || rating > 1 || !trackKey(track)) return;
  visit({.identity = track, .marks = {.rating = static_cast<int>(std::lround(rating * 100))}});
}

// Rhythmbox: XML with an element for each entry; the rating is from 0 to 5.

Result<> readRhythmbox(const fs::path& file, const Visit& visit) {
  QFile stream(QString::fromStdString(file));
  if (!stream.open(QIODevice::ReadOnly)) return Problem{stream.errorString().toStdString()};
  QXmlStreamReader xml(&stream);
  if (!xml.readNextStartElement() || xml.name() != QLatin1String("rhythmdb")) {
    return Problem{"it is no library of Rhythmbox"};
  }
  while (xml.readNextStartElement()) {
    TrackIdentity track;
    double rating = 0;
    while (xml.readNextStartElement()) {
      const auto is = [name = xml.name().toString()](const char* other) {
        return name == QLatin1String(other);
      };
      std::string* text = is("title")          ? &track.title
                          : is("artist")       ? &track.artist
                          : is("album")        ? &track.album
                          : is("album-artist") ? &track.albumArtist
                          : is("location")     ? &track.address
                                               : nullptr;
      double* number = is("rating") ? &rating : is("duration") ? &track.length : nullptr;
      const QString value = xml.readElementText(QXmlStreamReader::SkipChildElements);
      if (text != nullptr) *text = value.toStdString();
      if (number != nullptr) *number = value.toDouble();
    }
    visitRated(track, rating / 5, visit);
  }
  if (xml.hasError()) {
    return Problem{"line " + std::to_string(xml.lineNumber()) + ": " +
                   xml.errorString().toStdString()};
  }
  return {};
}

// Quod Libet: a pickled list of dictionaries; several values of one tag are lines.

Result<> readQuodLibet(const fs::path& file, const Visit& visit) {
  QFile stream(QString::fromStdString(file));
  if (!stream.open(QIODevice::ReadOnly)) return Problem{stream.errorString().toStdString()};
  const QByteArray bytes = stream.readAll();
  const auto visitSong = [&visit](const PickledMembers& song) {
    const auto text = [&song](const char* tag) {
      const auto found = song.find(tag);
      const auto* value = found == song.end() ? nullptr : std::get_if<std::string>(&found->second);
      std::string joined;
      for (const char c : value != nullptr ? *value : std::string()) {
        joined += c == '\n' ? std::string(", ") : std::string(1, c);
      }
      return joined;
    };
    const auto number = [&song](const char* tag) {
      const auto found = song.find(tag);
      const auto* value = found == song.end() ? nullptr : std::get_if<double>(&found->second);
      return value != nullptr ? *value : 0;
    };
    visitRated({.address = text("~filename"),
                .artist = text("artist"),
                .album = text("album"),
                .albumArtist = text("albumartist"),
                .title = text("title"),
                .length = number("~#length")},
               number("~#rating"), visit);
  };
  const std::string_view view(bytes.data(), static_cast<std::size_t>(bytes.size()));
  if (!readPickledDictionaries(view, visitSong)) return Problem{"it is no library of Quod Libet"};
  return {};
}

// Strawberry and Clementine: SQLite, lengths in nanoseconds, ratings from 0 to 1.

/// A folder that goes with this object.
class PrivateFolder {
 public:
  PrivateFolder() {
    std::error_code error;
    std::string path = fs::temp_directory_path(error) / "virelune-import-XXXXXX";
    if (!error && ::mkdtemp(path.data()) != nullptr) path_ = path;
  }
  ~PrivateFolder() {
    std::error_code ignored;
    if (!path_.empty()) fs::remove_all(path_, ignored);
  }
  PrivateFolder(const PrivateFolder&) = delete;
  PrivateFolder& operator=(const PrivateFolder&) = delete;
  const fs::path& path() const { return path_; }  ///< empty when it could not be made

 private:
  fs::path path_;
};

/// What changes when a file is written.
std::array<std::int64_t, 4> traceOf(const std::string& file) {
  struct stat facts {};
  if (::stat(file.c_str(), &facts) != 0) return {-1};
  return {static_cast<std::int64_t>(facts.st_ino), facts.st_size, facts.st_mtim.tv_sec,
          facts.st_mtim.tv_nsec};
}

/// Copies a database with its logs, as they are while nobody writes them.
Result<> copyDatabase(const fs::path& file, const fs::path& copy) {
  constexpr std::array parts = {"", "-wal", "-journal"};
  std::error_code error;
  for (int trial = 0; trial < 5; ++trial) {
    std::array<std::array<std::int64_t, 4>, parts.size()> before;
    for (std::size_t i = 0; i < parts.size(); ++i) before[i] = traceOf(file.native() + parts[i]);
    for (const char* part : parts) {
      fs::remove(copy.native() + part, error);
      fs::copy_file(file.native() + part, copy.native() + part, error);
      if (error && *part == '\0') return Problem{error.message()};
    }
    bool isSame = true;
    for (std::size_t i = 0; i < parts.size(); ++i) {
      isSame = isSame && traceOf(file.native() + parts[i]) == before[i];
    }
    if (isSame) return {};
  }
  return Problem{"the player writes it all the time"};
}

Result<> readSongs(const fs::path& file, const char* columnOfAddress, const Visit& visit) {
  const PrivateFolder folder;
  if (folder.path().empty()) return Problem{"there is no room for a copy"};
  const fs::path copy = folder.path() / "songs";
  if (const auto copied = copyDatabase(file, copy); !copied) return copied.problem();
  const std::string query =
      std::string("SELECT CAST(") + columnOfAddress +
      " AS TEXT), artist, album, albumartist, title, length, CAST(rating * 10000 AS INTEGER)"
      " FROM songs WHERE rating > 0";
  Database database;
  Statement songs;
  int result = database.open(copy, SQLITE_OPEN_READWRITE);
  if (result == SQLITE_OK) result = songs.prepare(database.handle(), query.c_str());
  if (result != SQLITE_OK) return Problem{sqlite3_errmsg(database.handle())};
  while ((result = songs.step()) == SQLITE_ROW) {
    constexpr double nanoseconds = 1e-9;
    visitRated({.address = songs.text(0),
                .artist = songs.text(1),
                .album = songs.text(2),
                .albumArtist = songs.text(3),
                .title = songs.text(4),
                .length = static_cast<double>(songs.integer(5).value_or(0)) * nanoseconds},
               static_cast<double>(songs.integer(6).value_or(0)) / 10000, visit);
  }
  if (result != SQLITE_DONE) return Problem{sqlite3_errmsg(database.handle())};
  return {};
}

}  // namespace

std::optional<PlayerLibrary> playerLibraryNamed(const std::string& name) {
  for (const auto& [prefix, player] : {std::pair("rhythmbox:", Player::rhythmbox),
                                       {"quodlibet:", Player::quodLibet},
                                       {"strawberry:", Player::strawberry},
                                       {"clementine:", Player::clementine}}) {
    if (!name.starts_with(prefix)) continue;
    const std::string file = name.substr(std::strlen(prefix));
    return PlayerLibrary{player, file.empty() ? usualFile(player) : fs::path(file)};
  }
  return std::nullopt;
}

Result<> readPlayerLibrary(const PlayerLibrary& library, const Visit& visit) {
  switch (library.player) {
    case Player::rhythmbox:
      return readRhythmbox(library.file, visit);
    case Player::quodLibet:
      return readQuodLibet(library.file, visit);
    case Player::strawberry:
      return readSongs(library.file, "url", visit);
    case Player::clementine:
      break;
  }
  return readSongs(library.file, "filename", visit);
}

}  // namespace desktop
