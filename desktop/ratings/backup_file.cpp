#include "desktop/ratings/backup_file.h"

#include <zlib.h>

#include <QtCore/QByteArray>
#include <array>
#include <cerrno>
#include <cstring>
#include <functional>
#include <memory>
#include <nlohmann/json.hpp>

#include "desktop/ratings/exchange.h"

namespace desktop {

namespace {

namespace fs = std::filesystem;
using nlohmann::json;

constexpr const char* backupKind = "backup";
constexpr const char* countEntries = "SELECT count(*) FROM marks";
constexpr const char* removedKind = "removed";
constexpr const char* unnamedKind = "unnamed";

/// A compressed text, line by line. After the first failure nothing more is done.
class Lines {
 public:
  Lines(const fs::path& file, const char* mode) : file_(gzopen(file.c_str(), mode)) {
    if (!file_) problem_ = std::strerror(errno);
  }

  /// None at the end, and when something is wrong.
  std::optional<std::string> next() {
    std::string line;
    std::array<char, 4096> part{};
    while (problem_.empty() &&
           gzgets(file_.get(), part.data(), static_cast<int>(part.size())) != nullptr) {
      line += part.data();
      if (!line.ends_with('\n')) continue;
      line.pop_back();
      return line;
    }
    note();
    if (problem_.empty() && !line.empty()) problem_ = "it ends in the middle of a line";
    return std::nullopt;
  }

  void write(const std::string& line) {
    if (!problem_.empty()) return;
    const auto length = static_cast<unsigned>(line.size());
    if (gzwrite(file_.get(), line.data(), length) != static_cast<int>(length)) note();
  }

  /// Ends the file; answers what was wrong first.
  Result<> finish() {
    const int result = file_ ? gzclose(file_.release()) : Z_OK;
    if (problem_.empty() && result == Z_ERRNO) problem_ = std::strerror(errno);
    if (problem_.empty() && result != Z_OK) problem_ = "it is cut off";
    if (!problem_.empty()) return Problem{problem_};
    return {};
  }

 private:
  struct Close {
    void operator()(gzFile_s* file) const { gzclose(file); }
  };
  void note() {
    if (!problem_.empty()) return;
    int code = Z_OK;
    const char* text = gzerror(file_.get(), &code);
    if (code != Z_OK && code != Z_STREAM_END) {
      problem_ = code == Z_ERRNO ? std::strerror(errno) : text;
    }
  }

  std::unique_ptr<gzFile_s, Close> file_;
  std::string problem_;
};

Problem problemOf(const EntryCollection& entries, int result) {
  const auto problem = problemWithResult(entries.database, result);
  return {problem ? problem->text : std::string()};
}

std::string hexOf(const std::string& digest) {
  return QByteArray::fromStdString(digest).toHex().toStdString();
}

/// A text of an object; empty when it has none.
std::string textOf(const json& object, const char* name) {
  const auto found = object.is_object() ? object.find(name) : object.end();
  return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

std::string lineOf(const StoredEntry& entry) {
  const std::string text = lineFromRecord(entry.record);
  if (entry.hasNames && digestOf(entry.record) == entry.digest) return text + '\n';
  json line = json::parse(text);
  if (!entry.hasNames) line["kind"] = unnamedKind;
  line["digest"] = hexOf(entry.digest);
  return line.dump() + '\n';
}

/// Writes what is in one collection and not the same in the other, as `line` tells it.
template <class Line>
int writeThose(Lines& lines, EntryCollection& of, EntryCollection& other, const Line& line) {
  int result = SQLITE_OK;
  const int visited = of.entries.forEach([&](const StoredEntry& entry) {
    std::optional<StoredEntry> found;
    result = other.entries.find(entry.digest, found);
    if (const auto text = line(entry, found)) lines.write(*text);
    return result == SQLITE_OK;
  });
  return result == SQLITE_OK ? visited : result;
}

Result<> readThrough(const fs::path& file) {
  Lines lines(file, "rb");
  while (lines.next()) {
  }
  return lines.finish();
}

/// Does this with the one that another builds on, which has all entries.
Result<> withBase(const fs::path& file, const std::function<Result<>(const fs::path&)>& read) {
  const auto head = headOfBackup(file);
  auto done = !head                ? Result<>(head.problem())
              : head->base.empty() ? read(file)
                                   : Result<>(Problem{"it builds on another"});
  if (done) return done;
  return Problem{file.filename().native() + ", on which it builds: " + done.problem().text};
}

/// Does what a line of a backup says; an empty text when it can be done, else why not.
std::string apply(const std::string& line, const fs::path& file, EntryCollection& entries) {
  json object = json::parse(line, nullptr, false);
  const std::string kind = textOf(object, "kind");
  if (kind == backupKind) {
    const std::string base = textOf(object, "from");
    if (base.empty()) return {};
    const auto read = withBase(file.parent_path() / base, [&entries](const fs::path& whole) {
      return readBackup(whole, entries);
    });
    return read ? "" : read.problem().text;
  }
  const bool isUnnamed = kind == unnamedKind;
  std::string digest =
      QByteArray::fromHex(QByteArray::fromStdString(textOf(object, "digest"))).toStdString();
  std::optional<RatingsRecord> record;
  if (kind != removedKind) {
    if (isUnnamed) object.update({{"kind", "track"}, {"title", "any"}});
    const auto read = recordFromLine(isUnnamed ? object.dump() : line);
    if (!read) return read.problem().text;
    record = *read;
    if (digest.empty()) digest = digestOf(*record).value_or("");
  }
  int result = entries.entries.remove(digest);
  MergeCounts counts;
  if (record && result == SQLITE_OK) {
    result = isUnnamed ? entries.entries.mergeMarks(digest, *record, counts)
                       : entries.entries.set(digest, *record);
  }
  return result == SQLITE_OK ? "" : problemOf(entries, result).text;
}

}  // namespace

Result<> writeBackup(const fs::path& file, EntryCollection& entries,
                     const std::optional<fs::path>& base) {
  Lines lines(file, "wb");
  std::int64_t count = 0;
  int result = entries.database.readInteger(countEntries, count);
  if (result != SQLITE_OK) return problemOf(entries, result);
  json head{{"kind", backupKind}, {"entries", count}};
  if (base) head["from"] = base->filename().native();
  lines.write(head.dump() + '\n');
  if (base) {
    EntryCollection former;
    if (const auto read = readBackup(*base, former); !read) return read.problem();
    result =
        writeThose(lines, former, entries,
                   [](const StoredEntry& entry, const std::optional<StoredEntry>& present) {
                     const json removed{{"kind", removedKind}, {"digest", hexOf(entry.digest)}};
                     return present ? std::nullopt : std::optional(removed.dump() + '\n');
                   });
    if (result != SQLITE_OK) return problemOf(former, result);
    result = writeThose(lines, entries, former,
                        [](const StoredEntry& entry, const std::optional<StoredEntry>& known) {
                          return entry == known ? std::nullopt : std::optional(lineOf(entry));
                        });
  } else {
    result = entries.entries.forEach([&lines](const StoredEntry& entry) {
      lines.write(lineOf(entry));
      return true;
    });
  }
  if (result != SQLITE_OK) return problemOf(entries, result);
  return lines.finish();
}

Result<> readBackup(const fs::path& file, EntryCollection& entries) {
  if (!entries.database) {
    constexpr int memory = 8;  // it is done beside a card that should stay small
    const int result = entries.makeEmpty(memory);
    if (result != SQLITE_OK) return problemOf(entries, result);
  }
  Lines lines(file, "rb");
  while (const auto line = lines.next()) {
    if (auto problem = apply(*line, file, entries); !problem.empty()) return Problem{problem};
  }
  return lines.finish();
}

bool areEqual(EntryCollection& a, EntryCollection& b) {
  std::int64_t count = 0, other = 0;
  if (a.database.readInteger(countEntries, count) != SQLITE_OK ||
      b.database.readInteger(countEntries, other) != SQLITE_OK || count != other) {
    return false;
  }
  return a.entries.forEach([&b](const StoredEntry& entry) {
    std::optional<StoredEntry> found;
    return b.entries.find(entry.digest, found) == SQLITE_OK && found == entry;
  }) == SQLITE_OK;
}

Result<BackupHead> headOfBackup(const fs::path& file) {
  Lines lines(file, "rb");
  const json head = json::parse(lines.next().value_or(""), nullptr, false);
  const auto entries = head.is_object() ? head.find("entries") : head.end();
  if (entries != head.end() && entries->is_number_integer()) {
    return BackupHead{entries->get<std::int64_t>(), textOf(head, "from")};
  }
  const auto read = lines.finish();
  return read ? Problem{"it is no backup"} : read.problem();
}

Result<std::int64_t> entriesInBackup(const fs::path& file) {
  const auto head = headOfBackup(file);
  if (!head) return head.problem();
  if (const auto read = readThrough(file); !read) return read.problem();
  if (head->base.empty()) return head->entries;
  const auto base = withBase(file.parent_path() / head->base, readThrough);
  return base ? Result<std::int64_t>(head->entries) : base.problem();
}

}  // namespace desktop
