#include "desktop/ratings/exchange.h"

#include <array>
#include <ctime>
#include <nlohmann/json.hpp>
#include <vector>

#include "desktop/files/whole_file.h"

namespace desktop {

namespace {

using Kind = RatingsRecord::Kind;
using nlohmann::json;

constexpr const char* dateFormat = "%Y-%m-%dT%H:%M:%SZ";
constexpr std::size_t longestImport = std::size_t{1} << 30U;  // bytes

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

/// The entries of a file's lines, or which line is bad.
Result<std::vector<RatingsRecord>> recordsFromLines(std::string_view text) {
  std::vector<RatingsRecord> records;
  if (text.starts_with("\xEF\xBB\xBF")) text.remove_prefix(3);
  for (std::int64_t number = 1; !text.empty(); ++number) {
    const std::string_view line = text.substr(0, text.find('\n'));
    text.remove_prefix(std::min(line.size() + 1, text.size()));
    if (line.find_first_not_of(" \t\r") == std::string_view::npos) continue;
    const auto record = recordFromLine(line);
    if (!record) return Problem{"line " + std::to_string(number) + ": " + record.problem().text};
    records.push_back(*record);
  }
  return records;
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
  std::string lines;
  std::int64_t count = 0;
  const bool isRead = store.forEach([&](const RatingsRecord& record) {
    lines += lineFromRecord(record) + '\n';
    ++count;
  });
  if (!isRead) return Problem{"nothing was exported"};
  if (const auto written = writeWholeFile(file, lines); !written) {
    return Problem{"cannot write " + file + ": " + written.problem().text};
  }
  return "Exported " + std::to_string(count) + (count == 1 ? " entry" : " entries") + " to " + file;
}

Result<std::string> importRatings(RatingsStore& store, const std::string& file) {
  const auto text = readWholeFile(file, longestImport);
  if (!text) return Problem{"cannot read " + file + ": " + text.problem().text};
  const auto records = recordsFromLines(*text);
  if (!records) return Problem{file + ", " + records.problem().text + "; nothing was imported"};
  const auto counts = store.merge(*records);
  if (!counts) return Problem{"nothing was imported"};
  return "Imported " + file + ": " + std::to_string(counts->added) + " added, " +
         std::to_string(counts->changed) + " changed, " + std::to_string(counts->unchanged) +
         " unchanged";
}

}  // namespace desktop
