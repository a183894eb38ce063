#include "desktop/ratings/rescue.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cerrno>
#include <cstring>
#include <map>
#include <memory>
#include <string_view>
#include <vector>

#include "desktop/files/file_descriptor.h"
#include "platform/foundation/text.h"

namespace desktop {

namespace {

using Bytes = std::span<const std::uint8_t>;

constexpr std::string_view databaseMagic("SQLite format 3\0", 16);
constexpr std::size_t databaseHeaderLength = 100;
constexpr std::size_t logHeaderLength = 32;
constexpr std::size_t frameHeaderLength = 24;
constexpr std::size_t saltLength = 8;
constexpr std::size_t usualPageSize = 4096;
constexpr std::int64_t longestRow = 1 << 20U;  // bytes; no name of ours is that long
constexpr std::size_t digestLength = 16;

enum PageType : std::uint8_t {
  indexInterior = 0x02,
  tableInterior = 0x05,
  indexLeaf = 0x0a,
  tableLeaf = 0x0d
};

std::uint32_t bigEndian(Bytes bytes, std::size_t at, std::size_t length) {
  std::uint32_t number = 0;
  for (const std::uint8_t byte : bytes.subspan(at, length)) number = number << 8U | byte;
  return number;
}

std::optional<std::size_t> soundPageSize(std::uint32_t size) {
  const bool isSound = size >= 512 && size <= 65536 && std::has_single_bit(size);
  return isSound ? std::optional<std::size_t>(size) : std::nullopt;
}

/// Takes numbers from the front of bytes; `isSound` tells whether all of them were there.
struct NumberReader {
  Bytes rest;
  bool isSound = true;

  /// One to nine bytes, the more significant ones first.
  std::uint64_t variable() {
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < 9 && i < rest.size(); ++i) {
      const std::uint8_t byte = rest[i];
      const bool isNinth = i == 8;
      number = isNinth ? number << 8U | byte : number << 7U | (byte & 0x7FU);
      if (isNinth || byte < 0x80) {
        rest = rest.subspan(i + 1);
        return number;
      }
    }
    isSound = false;
    return 0;
  }

  /// Big-endian two's complement of up to eight bytes.
  std::int64_t fixed(std::size_t length) {
    if (length > rest.size()) return isSound = false, 0;
    std::uint64_t number = length > 0 && rest[0] >= 0x80 ? ~std::uint64_t{0} : 0;
    for (const std::uint8_t byte : rest.first(length)) number = number << 8U | byte;
    rest = rest.subspan(length);
    return static_cast<std::int64_t>(number);
  }

  std::string bytes(std::uint64_t length) {
    if (length > rest.size()) return isSound = false, std::string();
    const Bytes taken = rest.first(length);
    rest = rest.subspan(length);
    return {taken.begin(), taken.end()};
  }
};

/// A column of a row. A number is none for NULL; texts and blobs have no number.
struct Column {
  enum class Kind { number, text, blob, other };
  Kind kind = Kind::other;
  std::optional<std::int64_t> number = std::nullopt;
  std::string bytes = {};
};

Column readColumn(std::uint64_t type, NumberReader& body) {
  constexpr std::array<std::size_t, 7> lengths = {0, 1, 2, 3, 4, 6, 8};
  using Kind = Column::Kind;
  if (type == 0) return {Kind::number};
  if (type < lengths.size()) return {Kind::number, body.fixed(lengths.at(type))};
  if (type == 8 || type == 9) return {Kind::number, type == 9 ? 1 : 0};
  if (type < 12) return {Kind::other, std::nullopt, body.bytes(8)};
  const Kind kind = type % 2 == 0 ? Kind::blob : Kind::text;
  return {kind, std::nullopt, body.bytes((type - 12) / 2)};
}

/// The columns that a row's bytes hold; none when they make no sense.
std::optional<std::vector<Column>> readColumns(Bytes row) {
  constexpr std::size_t mostColumns = 32;
  NumberReader head{row};
  const std::uint64_t headLength = head.variable();
  const std::size_t taken = row.size() - head.rest.size();
  if (!head.isSound || headLength < taken || headLength > row.size()) return std::nullopt;
  head.rest = row.subspan(taken, headLength - taken);
  NumberReader body{row.subspan(headLength)};
  std::vector<Column> columns;
  while (!head.rest.empty() && head.isSound && body.isSound && columns.size() < mostColumns) {
    columns.push_back(readColumn(head.variable(), body));
  }
  if (!head.rest.empty() || !head.isSound || !body.isSound) return std::nullopt;
  return columns;
}

bool areAll(std::span<const Column> columns, Column::Kind kind) {
  return std::all_of(columns.begin(), columns.end(),
                     [kind](const Column& column) { return column.kind == kind; });
}

bool isWithin(const Column& column, std::int64_t first, std::int64_t last) {
  return !column.number || (*column.number >= first && *column.number <= last);
}

/// The row that columns stand for, told by their shape: the tables of ours have no other sign.
/// Columns of later versions may follow.
std::optional<RescuedRow> rowFromColumns(std::span<const Column> columns) {
  using Kind = Column::Kind;
  constexpr std::int64_t latest = std::int64_t{1} << 40U;  // seconds
  if (columns.size() < 5 || columns[0].kind != Kind::blob ||
      columns[0].bytes.size() != digestLength) {
    return std::nullopt;
  }
  RescuedRow row{.digest = columns[0].bytes};
  if (areAll(columns.subspan(1, 4), Kind::number)) {
    const auto& [rating, loved] = std::tie(columns[1], columns[3]);
    if (!isWithin(rating, 0, 100) || !isWithin(loved, 0, 1) || !isWithin(columns[2], 0, latest) ||
        !isWithin(columns[4], 0, latest) || (!rating.number && !loved.number)) {
      return std::nullopt;
    }
    row.hasMarks = true;
    if (rating.number) row.record.marks.rating = static_cast<int>(*rating.number);
    if (loved.number) row.record.marks.loved = *loved.number != 0;
    row.record.ratingChanged = columns[2].number.value_or(0);
    row.record.lovedChanged = columns[4].number.value_or(0);
    return row;
  }
  if (columns.size() < 8 || columns[1].kind != Kind::number || !isWithin(columns[1], 0, 1) ||
      !areAll(columns.subspan(2, 5), Kind::text) || columns[7].kind != Kind::number) {
    return std::nullopt;
  }
  row.record.kind =
      columns[1].number == 1 ? RatingsRecord::Kind::album : RatingsRecord::Kind::track;
  row.record.identity = {.address = columns[2].bytes,
                         .artist = columns[3].bytes,
                         .album = columns[4].bytes,
                         .albumArtist = columns[5].bytes,
                         .title = columns[6].bytes,
                         .length = static_cast<double>(columns[7].number.value_or(0))};
  return row;
}

/// True for a row of ours that is made again, or done without: of the index of titles, of a note
/// about a player's library.
bool isDispensable(std::span<const Column> columns) {
  using Kind = Column::Kind;
  const auto isDigest = [](const Column& column) {
    return column.kind == Kind::blob && column.bytes.size() == digestLength;
  };
  if (columns.size() == 3) {
    return columns[0].kind == Kind::text && columns[1].kind == Kind::number && isDigest(columns[2]);
  }
  return columns.size() == 5 && isDigest(columns[0]) && columns[1].kind == Kind::text &&
         areAll(columns.subspan(2), Kind::number);
}

class Rescue {
 public:
  Rescue(const RescueSource& file, const RescueSource* log,
         const std::function<bool(const RescuedRow&)>& visit)
      : file_(file), log_(log), visit_(visit) {
    readHeaders();
  }

  PageCounts run() {
    std::vector<std::uint8_t> page(pageSize_);
    std::vector<bool> isEmpty(pageCount() + 1);  // of entries, as far as its first byte tells
    for (std::size_t number = 1; number <= pageCount() && !isStopped_; ++number) {
      ++counts_.all;
      const bool isRead = readFromFile(number, page);
      isEmpty[number] = isRead && number != 1 && page[0] == 0;
      if (isEmpty[number]) continue;
      if (!isRead || !rescuePage(page, number == 1)) ++counts_.unreadable;
    }
    for (std::size_t frame = 0; frame < frames_ && !isStopped_; ++frame) {
      ++counts_.all;
      const bool isRead = readFrame(frame, page);
      if (isRead && page[0] == 0) continue;
      const bool isFirst = page.size() >= databaseMagic.size() && beginsAsDatabase(page);
      if (!isRead || !rescuePage(page, isFirst)) ++counts_.unreadable;
    }
    // Nothing is lost with empty pages that rows overflow into or that wait to be used again.
    markUnusedPages();
    for (std::size_t number = 1; number < isEmpty.size(); ++number) {
      if (isEmpty[number] && !isReached_[number]) ++counts_.unreadable;
    }
    return counts_;
  }

 private:
  static bool beginsAsDatabase(Bytes bytes) {
    return std::equal(databaseMagic.begin(), databaseMagic.end(), bytes.begin());
  }

  std::size_t pageCount() const { return isReached_.size() - 1; }

  void readHeaders() {
    std::array<std::uint8_t, databaseHeaderLength> header{};
    pageSize_ = usualPageSize;
    std::size_t reserved = 0;
    const auto headerLength = static_cast<std::int64_t>(header.size());
    if (file_.length >= headerLength && file_.read(0, header) && beginsAsDatabase(header)) {
      const std::uint32_t size = bigEndian(header, 16, 2);
      pageSize_ = soundPageSize(size == 1 ? 65536 : size).value_or(usualPageSize);
      reserved = header[20];
      firstUnused_ = bigEndian(header, 32, 4);
    } else if (log_ != nullptr) {
      readLogHeader();
    }
    usable_ = pageSize_ > reserved + 480 ? pageSize_ - reserved : pageSize_;
    const auto size = static_cast<std::int64_t>(pageSize_);
    isReached_.resize(static_cast<std::size_t>((file_.length + size - 1) / size) + 1);
    if (log_ != nullptr) listFrames();
  }

  void readLogHeader() {
    std::array<std::uint8_t, logHeaderLength> header{};
    if (!log_->read(0, header)) return;
    pageSize_ = soundPageSize(bigEndian(header, 8, 4)).value_or(usualPageSize);
  }

  /// Frames of one round of the log carry its salt; what follows is left from rounds before.
  void listFrames() {
    std::array<std::uint8_t, logHeaderLength> header{};
    std::array<std::uint8_t, frameHeaderLength> frame{};
    if (!log_->read(0, header)) return;
    while (frameOffset(frames_ + 1) <= log_->length && log_->read(frameOffset(frames_), frame)) {
      const bool isOfThisRound =
          std::equal(frame.begin() + 8, frame.begin() + 8 + saltLength, header.begin() + 16);
      if (!isOfThisRound) return;
      framesOfPages_[bigEndian(frame, 0, 4)] = frames_;
      ++frames_;
    }
  }

  std::int64_t frameOffset(std::size_t frame) const {
    return static_cast<std::int64_t>(logHeaderLength + frame * (frameHeaderLength + pageSize_));
  }

  bool readFrame(std::size_t frame, std::span<std::uint8_t> page) const {
    return log_->read(frameOffset(frame) + static_cast<std::int64_t>(frameHeaderLength), page);
  }

  bool readFromFile(std::size_t number, std::span<std::uint8_t> page) const {
    const auto offset = static_cast<std::int64_t>((number - 1) * pageSize_);
    const std::int64_t rest = file_.length - offset;
    if (rest <= 0) return false;
    std::fill(page.begin(), page.end(), std::uint8_t{0});  // behind a file that was cut
    return file_.read(offset, page.first(std::min(page.size(), static_cast<std::size_t>(rest))));
  }

  /// The last state of a page.
  bool readLast(std::size_t number, std::span<std::uint8_t> page) const {
    const auto frame = framesOfPages_.find(number);
    return frame == framesOfPages_.end() ? number > 0 && readFromFile(number, page)
                                         : readFrame(frame->second, page);
  }

  void reach(std::size_t number) {
    if (number < isReached_.size()) isReached_[number] = true;
  }

  void markUnusedPages() {
    std::vector<std::uint8_t> trunk(pageSize_);
    std::size_t next = firstUnused_;
    for (std::size_t i = 0; i < pageCount() && next != 0 && readLast(next, trunk); ++i) {
      reach(next);
      const std::size_t leaves = std::min<std::size_t>(bigEndian(trunk, 4, 4), usable_ / 4 - 2);
      for (std::size_t leaf = 0; leaf < leaves; ++leaf) reach(bigEndian(trunk, 8 + 4 * leaf, 4));
      next = bigEndian(trunk, 0, 4);
    }
  }

  /// False when the page, or a part of it, makes no sense.
  bool rescuePage(Bytes page, bool isFirst) {
    const std::size_t begin = isFirst ? databaseHeaderLength : 0;
    if (isFirst && !beginsAsDatabase(page)) return false;
    const std::uint8_t type = page[begin];
    if (type == tableLeaf || type == tableInterior) return true;  // none of ours
    if (type != indexLeaf && type != indexInterior) return false;
    const bool isInterior = type == indexInterior;
    const std::size_t cells = bigEndian(page, begin + 3, 2);
    const std::size_t pointers = begin + (isInterior ? 12 : 8);
    if (pointers + 2 * cells > usable_) return false;
    bool isSound = true;
    for (std::size_t cell = 0; cell < cells && !isStopped_; ++cell) {
      const std::size_t at = bigEndian(page, pointers + 2 * cell, 2) + (isInterior ? 4U : 0U);
      isSound = at < usable_ && rescueCell(page.subspan(at, usable_ - at)) && isSound;
    }
    return isSound;
  }

  bool rescueCell(Bytes cell) {
    NumberReader reader{cell};
    const std::uint64_t length = reader.variable();
    if (!reader.isSound || length > longestRow) return false;
    const auto row = wholeRow(reader.rest, static_cast<std::size_t>(length));
    if (!row) return false;
    const auto columns = readColumns(*row);
    if (!columns) return false;
    auto found = rowFromColumns(*columns);
    if (!found) return isDispensable(*columns);
    isStopped_ = !visit_(*found);
    return true;
  }

  /// A row's bytes: some in its cell, the rest in a chain of pages.
  std::optional<std::vector<std::uint8_t>> wholeRow(Bytes cell, std::size_t length) {
    const std::size_t most = (usable_ - 12) * 64 / 255 - 23;
    const std::size_t least = (usable_ - 12) * 32 / 255 - 23;
    const std::size_t perPage = usable_ - 4;
    std::size_t local = length;
    if (length > most) {
      const std::size_t fitting = least + (length - least) % perPage;
      local = fitting <= most ? fitting : least;
    }
    const bool overflows = local < length;
    if (local + (overflows ? 4U : 0U) > cell.size()) return std::nullopt;
    std::vector<std::uint8_t> row(cell.begin(), cell.begin() + static_cast<std::ptrdiff_t>(local));
    std::vector<std::uint8_t> page(overflows ? pageSize_ : 0);
    std::size_t next = overflows ? bigEndian(cell, local, 4) : 0;
    while (row.size() < length) {
      if (!readLast(next, page)) return std::nullopt;
      reach(next);
      const auto taken = static_cast<std::ptrdiff_t>(std::min(perPage, length - row.size()));
      row.insert(row.end(), page.begin() + 4, page.begin() + 4 + taken);
      next = bigEndian(page, 0, 4);
    }
    return row;
  }

  const RescueSource& file_;
  const RescueSource* log_;
  const std::function<bool(const RescuedRow&)>& visit_;
  std::size_t pageSize_ = usualPageSize;
  std::size_t usable_ = usualPageSize;  // what is left of a page beside reserved bytes
  std::size_t firstUnused_ = 0;         // the first page that lists unused ones
  std::size_t frames_ = 0;
  std::map<std::size_t, std::size_t> framesOfPages_;  // the last frame of each page in the log
  std::vector<bool> isReached_;                       // pages that are accounted for, from 1
  PageCounts counts_;
  bool isStopped_ = false;
};

bool beginsAsLog(Bytes bytes) { return (bigEndian(bytes, 0, 4) & ~1U) == 0x377f0682; }

std::array<std::uint8_t, logHeaderLength> beginningOf(const RescueSource& source) {
  std::array<std::uint8_t, logHeaderLength> bytes{};
  const bool isRead =
      source.length >= static_cast<std::int64_t>(bytes.size()) && source.read(0, bytes);
  return isRead ? bytes : decltype(bytes){};
}

}  // namespace

Result<RescueSource> rescueSourceFromFile(const std::filesystem::path& file) {
  const auto opened = std::make_shared<FileDescriptor>(::open(file.c_str(), O_RDONLY | O_CLOEXEC));
  struct stat found {};
  if (!*opened || ::fstat(opened->get(), &found) != 0) return Problem{std::strerror(errno)};
  return RescueSource{found.st_size, [opened](std::int64_t offset, std::span<std::uint8_t> bytes) {
                        const auto length = static_cast<ssize_t>(bytes.size());
                        return ::pread(opened->get(), bytes.data(), bytes.size(), offset) == length;
                      }};
}

RescueSource rescueSourceFromDatabase(const Database& database) {
  sqlite3_file* file = nullptr;
  sqlite3_file_control(database.handle(), "main", SQLITE_FCNTL_FILE_POINTER, &file);
  sqlite3_int64 length = 0;
  if (file == nullptr || file->pMethods == nullptr ||
      file->pMethods->xFileSize(file, &length) != SQLITE_OK) {
    return {};
  }
  return {length, [file](std::int64_t offset, std::span<std::uint8_t> bytes) {
            return file->pMethods->xRead(file, bytes.data(), static_cast<int>(bytes.size()),
                                         offset) == SQLITE_OK;
          }};
}

std::optional<RescueSource> logBeside(const std::filesystem::path& file) {
  const auto log = rescueSourceFromFile(file.native() + "-wal");
  return log && log->length > 0 ? std::optional(*log) : std::nullopt;
}

bool looksLikeDatabase(const RescueSource& source) {
  const auto bytes = beginningOf(source);
  return std::equal(databaseMagic.begin(), databaseMagic.end(), bytes.begin()) ||
         beginsAsLog(bytes);
}

PageCounts rescueRows(const RescueSource& file, const RescueSource* log,
                      const std::function<bool(const RescuedRow&)>& visit) {
  if (!beginsAsLog(beginningOf(file))) return Rescue(file, log, visit).run();
  const RescueSource nothing;
  return Rescue(nothing, &file, visit).run();
}

int rescueInto(Entries& entries, const RescueSource& file, const RescueSource* log,
               MergeCounts& counts, PageCounts& pages) {
  int result = SQLITE_OK;
  pages = rescueRows(file, log, [&](const RescuedRow& row) {
    result = row.hasMarks ? entries.mergeMarks(row.digest, row.record, counts)
                          : entries.addNames(row.digest, row.record);
    return result == SQLITE_OK;
  });
  return result;
}

}  // namespace desktop
