#include "desktop/ratings/exchange.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "desktop/files/whole_file.h"
#include "desktop/ratings/player_library.h"
#include "desktop/ratings/rescue.h"

namespace desktop {

namespace {

using Kind = RatingsRecord::Kind;
using nlohmann::json;

constexpr const char* dateFormat = "%Y-%m-%dT%H:%M:%SZ";

std::string textFromDate(std::int64_t seconds) {
  const std::time_t time = seconds;
  std::tm parts{};
  std::array<char, 32> text{};
  if (::gmtime_r(&time, &parts) == nullptr) return {};
  return {text.data(), std::strftime(text.data(), text.size(), dateFormat, &parts)};
}

std::optional<std::int64_t> dateFromText(const std::string& text) {
  std::tm parts{};
  const char* end = ::strptime(text.c_str(), dateFormat, &parts);
  if (end == nullptr || *end != '\0') return std::nullopt;
  return ::timegm(&parts);
}

/// Reads the members of one object; keeps what is wrong with the first that is not as it must be.
class MemberReader {
 public:
  explicit MemberReader(const json& object) : object_(object) {}

  const std::string& problem() const { return problem_; }

  std::string text(const char* name) {
    const json* value = member(name);
    if (value == nullptr) return {};
    if (!value->is_string()) return complain(name, "a text"), std::string();
    return value->get<std::string>();
  }

  double length(const char* name) {
    const json* value = member(name);
    if (value == nullptr) return 0;
    if (!value->is_number() || value->get<double>() < 0) return complain(name, "seconds"), 0;
    return value->get<double>();
  }

  std::optional<int> rating(const char* name) {
    const json* value = member(name);
    if (value == nullptr) return std::nullopt;
    if (!value->is_number_integer() || *value < 0 || *value > 100) {
      return complain(name, "a whole number from 0 to 100"), std::nullopt;
    }
    return value->get<int>();
  }

  std::optional<bool> boolean(const char* name) {
    const json* value = member(name);
    if (value == nullptr) return std::nullopt;
    if (!value->is_boolean()) return complain(name, "true or false"), std::nullopt;
    return value->get<bool>();
  }

  std::int64_t date(const char* name) {
    const std::string written = text(name);
    if (written.empty()) return 0;
    const auto date = dateFromText(written);
    if (!date) complain(name, "a date as 2026-01-31T20:15:00Z");
    return date.value_or(0);
  }

 private:
  const json* member(const char* name) const {
    const auto found = object_.find(name);
    return found == object_.end() || found->is_null() ? nullptr : &*found;
  }
  void complain(const char* name, const char* expected) {
    if (problem_.empty()) problem_ = '"' + std::string(name) + "\" must be " + expected;
  }

  const json& object_;
  std::string problem_;
};

/// What is missing in an entry whose members are sound; empty when nothing is.
std::string omission(const RatingsRecord& record) {
  if (record.marks == Marks{}) return "it has neither \"rating\" nor \"loved\"";
  if (record.kind == Kind::album && !albumKey(record.identity)) return "it has no \"album\"";
  if (record.kind == Kind::track && !trackKey(record.identity)) {
    return "it has neither a lasting \"address\" nor a \"title\"";
  }
  return {};
}

std::string counted(std::int64_t number, const char* one, const char* several) {
  return std::to_string(number) + (number == 1 ? one : several);
}

Problem temporaryProblem(EntryCollection& collection, int result) {
  const auto problem = problemWithResult(collection.database, result);
  return {"cannot write a temporary file: " + (problem ? problem->text : std::string())};
}

Result<std::string> writeEntries(EntryCollection& entries, const std::string& file) {
  const bool isStandardOutput = file == "-";
  std::int64_t count = 0, lost = 0;
  int result = SQLITE_OK;
  const auto written =
      writeWholeFile(isStandardOutput ? "/dev/stdout" : file, [&](const platform::FileSink& sink) {
        bool isSunk = true;
        result = entries.entries.forEach([&](const StoredEntry& entry) {
          ++(entry.hasNames ? count : lost);
          return isSunk = !entry.hasNames || sink(lineFromRecord(entry.record) + '\n');
        });
        return isSunk && result == SQLITE_OK;
      });
  if (result != SQLITE_OK && result != SQLITE_ABORT) return temporaryProblem(entries, result);
  if (!written) return Problem{"cannot write " + file + ": " + written.problem().text};
  return "Exported " + counted(count, " entry", " entries") + " to " +
         (isStandardOutput ? "the standard output" : file) +
         (lost == 0 ? "" : "; what " + std::to_string(lost) + " more belong to is lost");
}

/// Reads the entries of a file's lines, or tells which line is bad.
Result<> readLines(std::istream& lines, EntryCollection& entries, MergeCounts& counts) {
  std::string line;
  for (std::int64_t number = 1; std::getline(lines, line); ++number) {
    if (number == 1 && line.starts_with("\xEF\xBB\xBF")) line.erase(0, 3);
    if (line.find_first_not_of(" \t\r") == std::string_view::npos) continue;
    const auto record = recordFromLine(line);
    if (!record) return Problem{", line " + std::to_string(number) + ": " + record.problem().text};
    const int result = entries.add(*record, counts);
    if (result != SQLITE_OK) return Problem{": " + temporaryProblem(entries, result).text};
  }
  if (lines.bad()) return Problem{std::string(": ") + std::strerror(errno)};
  return {};
}

/// Reads the entries of a store's file that was kept; none when it is no such file.
std::optional<PageCounts> readKeptStore(const std::string& file, EntryCollection& entries,
                                        MergeCounts& counts) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(file, error)) return std::nullopt;
  const auto source = rescueSourceFromFile(file);
  if (!source) return std::nullopt;
  PageCounts pages;
  const auto log = logBeside(file);
  const int result = rescueInto(entries.entries, *source, log ? &*log : nullptr, counts, pages);
  const bool isStore = counts.added > 0 || looksLikeDatabase(*source);
  return result == SQLITE_OK && isStore ? std::optional(pages) : std::nullopt;
}

/// Takes the ratings of a player's library over.
Result<std::string> importLibrary(RatingsStore& store, const PlayerLibrary& library) {
  EntryCollection entries;
  MergeCounts read;
  int result = entries.makeEmpty();
  const auto done = readPlayerLibrary(library, [&](const RatingsRecord& record) {
    if (result == SQLITE_OK) result = entries.add(record, read);
  });
  if (!done) {
    return Problem{"cannot read " + library.file.native() + ": " + done.problem().text +
                   "; nothing was imported"};
  }
  if (result != SQLITE_OK) return temporaryProblem(entries, result);
  const auto counts = store.merge(entries);
  if (!counts) return Problem{counts.problem().text + "; nothing was imported"};
  return "Imported " + counted(counts->added + counts->changed, " rating", " ratings") + " from " +
         library.file.native() + "; " + counted(counts->unchanged, " track was", " tracks were") +
         " rated here already";
}

}  // namespace

std::string lineFromRecord(const RatingsRecord& record) {
  nlohmann::ordered_json line;
  const auto addText = [&line](const char* name, const std::string& text) {
    if (!text.empty()) line[name] = text;
  };
  const TrackIdentity& identity = record.identity;
  const bool album = record.kind == Kind::album;
  line["kind"] = album ? "album" : "track";
  addText("address", identity.address);
  addText("artist", album ? identity.albumArtist : identity.artist);
  addText("album", identity.album);
  if (!album) addText("albumArtist", identity.albumArtist);
  addText("title", identity.title);
  if (const std::int64_t length = wholeSeconds(identity.length); length > 0) {
    line["length"] = length;
  }
  if (record.marks.rating) {
    line["rating"] = *record.marks.rating;
    if (record.ratingChanged != 0) line["ratingChanged"] = textFromDate(record.ratingChanged);
  }
  if (record.marks.loved) {
    line["loved"] = *record.marks.loved;
    if (record.lovedChanged != 0) line["lovedChanged"] = textFromDate(record.lovedChanged);
  }
  return line.dump(-1, ' ', false, json::error_handler_t::replace);
}

Result<RatingsRecord> recordFromLine(std::string_view line) {
  const json object = json::parse(line, nullptr, false);
  if (!object.is_object()) return Problem{"it is not a JSON object"};
  MemberReader member(object);
  RatingsRecord record;
  const std::string kind = member.text("kind");
  if (kind != "track" && kind != "album") {
    return Problem{R"("kind" must be "track" or "album")"};
  }
  record.kind = kind == "album" ? Kind::album : Kind::track;
  record.identity = {.address = member.text("address"),
                     .artist = member.text("artist"),
                     .album = member.text("album"),
                     .albumArtist = member.text("albumArtist"),
                     .title = member.text("title"),
                     .length = member.length("length")};
  record.marks = {.rating = member.rating("rating"), .loved = member.boolean("loved")};
  record.ratingChanged = member.date("ratingChanged");
  record.lovedChanged = member.date("lovedChanged");
  if (!member.problem().empty()) return Problem{member.problem()};
  if (std::string missing = omission(record); !missing.empty()) return Problem{missing};
  return record;
}

Result<std::string> exportRatings(RatingsStore& store, const std::string& file) {
  EntryCollection copy;
  if (const auto problem = store.copyTo(copy)) return Problem{problem->text};
  return writeEntries(copy, file);
}

Result<std::string> salvageRatings(RatingsStore& store, const std::string& file) {
  EntryCollection copy;
  const auto problem = store.copyTo(copy);
  if (!problem) return writeEntries(copy, file);
  const auto source = rescueSourceFromFile(store.file());
  if (!source) return Problem{problem->text};
  EntryCollection rescued;
  MergeCounts counts;
  PageCounts pages;
  const auto log = logBeside(store.file());
  int result = rescued.makeEmpty();
  if (result == SQLITE_OK) {
    result = rescueInto(rescued.entries, *source, log ? &*log : nullptr, counts, pages);
  }
  if (result != SQLITE_OK) return temporaryProblem(rescued, result);
  auto report = writeEntries(rescued, file);
  if (!report) return report;
  return *report + "; " + std::to_string(pages.unreadable) + " of " +
         counted(pages.all, " page", " pages") + " could not be read";
}

Result<std::string> importRatings(RatingsStore& store, const std::string& file) {
  if (const auto library = playerLibraryNamed(file)) return importLibrary(store, *library);
  EntryCollection entries;
  MergeCounts read;
  if (const int result = entries.makeEmpty(); result != SQLITE_OK) {
    return temporaryProblem(entries, result);
  }
  const auto pages = readKeptStore(file, entries, read);
  if (!pages) {
    std::ifstream lines(file, std::ios::binary);
    if (!lines) return Problem{"cannot read " + file + ": " + std::strerror(errno)};
    if (const auto done = readLines(lines, entries, read); !done) {
      return Problem{file + done.problem().text + "; nothing was imported"};
    }
  }
  const auto counts = store.merge(entries);
  if (!counts) return Problem{counts.problem().text + "; nothing was imported"};
  // What a file has more than once counts as often.
  const std::int64_t repeated = pages ? 0 : read.changed + read.unchanged;
  return "Imported " + file + ": " + std::to_string(counts->added) + " added, " +
         std::to_string(counts->changed) + " changed, " +
         std::to_string(counts->unchanged + repeated) + " unchanged" +
         (pages && pages->unreadable > 0
              ? "; " + std::to_string(pages->unreadable) + " of " +
                    counted(pages->all, " page", " pages") + " could not be read"
              : "");
}

}  // namespace desktop
