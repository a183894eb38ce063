#include "desktop/player/artwork.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <QtCore/QByteArray>
#include <QtCore/QFile>
#include <QtCore/QUrl>
#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "desktop/files/file_descriptor.h"
#include "platform/loop/run_loop.h"
#include "platform/platform.h"

namespace desktop {

namespace {

using platform::Data;

constexpr std::size_t maximumCoverLength = 32 * 1024 * 1024;
constexpr std::size_t keptCovers = 4;
constexpr platform::TimeInterval transferTimeout = 30;
/// A cover that could not be had is asked for again after this many seconds.
constexpr platform::TimeInterval retryAfter = 60;

/// Tells whether a file is still the one that was read.
struct FileStamp {
  dev_t device = 0;
  ino_t inode = 0;
  std::int64_t length = 0;
  std::int64_t seconds = 0;
  std::int64_t nanoseconds = 0;
  bool operator==(const FileStamp&) const = default;
};

Data dataFrom(const QByteArray& bytes) {
  return Data(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
}

/// The content of a "data:" address; empty when it is malformed or too long.
Data decodedDataAddress(const QString& address) {
  const qsizetype comma = address.indexOf(QLatin1Char(','));
  if (comma < 0 || static_cast<std::size_t>(address.size()) > maximumCoverLength / 3 * 4) return {};
  const QByteArray content =
      QByteArray::fromPercentEncoding(QStringView(address).mid(comma + 1).toLatin1());
  const bool isBase64 =
      QStringView(address).left(comma).endsWith(QLatin1String(";base64"), Qt::CaseInsensitive);
  return dataFrom(isBase64 ? QByteArray::fromBase64(content) : content);
}

/// The path of a file address or of an absolute path as sloppy players send it; empty for others.
QString localPath(const QString& address) {
  if (address.startsWith(QLatin1Char('/'))) return address;
  if (!address.startsWith(QLatin1String("file:"), Qt::CaseInsensitive)) return {};
  const QUrl url(address);
  const bool isHere = url.host().isEmpty() || url.host() == QLatin1String("localhost");
  return isHere ? url.path(QUrl::FullyDecoded) : QString();
}

/// The bytes of an open file; empty when it cannot be read or grew too long meanwhile.
Data readAll(const FileDescriptor& file, std::int64_t expectedLength) {
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(expectedLength));
  std::size_t length = 0;
  while (length < bytes.size()) {
    const ssize_t count = ::read(file.get(), bytes.data() + length, bytes.size() - length);
    if (count < 0 && errno == EINTR) continue;
    if (count <= 0) break;
    length += static_cast<std::size_t>(count);
  }
  bytes.resize(length);
  return Data(std::move(bytes));
}

}  // namespace

struct PlayerArtwork::Entry {
  QString address;
  Data bytes;
  std::optional<FileStamp> stamp;
  std::shared_ptr<platform::HTTPTransfer> transfer;  // set while one is under way
  std::uint64_t transferNumber = 0;                  // tells it from earlier ones
  std::optional<platform::TimeInterval> missingSince;

  ~Entry() {
    if (transfer) transfer->cancel();
  }
};

PlayerArtwork::PlayerArtwork(std::function<void()> arrived)
    : arrived_(std::move(arrived)), self_(std::make_shared<PlayerArtwork*>(this)) {}

PlayerArtwork::~PlayerArtwork() = default;

bool PlayerArtwork::exists(const QString& address) {
  if (address.isEmpty()) return false;
  const Entry& entry = entryFor(address);
  return entry.transfer != nullptr || !entry.bytes.isEmpty();
}

Data PlayerArtwork::bytes(const QString& address) {
  return address.isEmpty() ? Data() : entryFor(address).bytes;
}

const PlayerArtwork::Entry& PlayerArtwork::entryFor(const QString& address) {
  const auto found = std::find_if(entries_.begin(), entries_.end(),
                                  [&](const Entry& entry) { return entry.address == address; });
  if (found != entries_.end()) {
    entries_.splice(entries_.begin(), entries_, found);
  } else {
    entries_.emplace_front().address = address;
    if (entries_.size() > keptCovers) entries_.pop_back();
  }
  load(entries_.front());
  return entries_.front();
}

void PlayerArtwork::load(Entry& entry) {
  const QString path = localPath(entry.address);
  if (!path.isEmpty()) return loadFile(entry, path);
  if (!entry.bytes.isEmpty()) return;
  if (entry.address.startsWith(QLatin1String("data:"), Qt::CaseInsensitive)) {
    entry.bytes = decodedDataAddress(entry.address);
  } else if (entry.address.startsWith(QLatin1String("http://"), Qt::CaseInsensitive) ||
             entry.address.startsWith(QLatin1String("https://"), Qt::CaseInsensitive)) {
    startTransfer(entry);
  }
}

void PlayerArtwork::loadFile(Entry& entry, const QString& path) {
  // Opened without waiting: a pipe without a writer would hold the interface up.
  const FileDescriptor file(
      ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
  struct stat status {};
  const bool isReadable = file && ::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode) &&
                          status.st_size <= static_cast<std::int64_t>(maximumCoverLength);
  if (!isReadable) {
    entry.bytes = Data();
    entry.stamp.reset();
    return;
  }
  const FileStamp stamp{status.st_dev, status.st_ino, status.st_size, status.st_mtim.tv_sec,
                        status.st_mtim.tv_nsec};
  if (entry.stamp == stamp) return;
  entry.bytes = readAll(file, status.st_size);
  entry.stamp = stamp;
}

void PlayerArtwork::startTransfer(Entry& entry) {
  platform::HTTPTransport* http = platform::current().http;
  platform::RunLoop* runLoop = platform::current().runLoop;
  if (entry.transfer != nullptr || http == nullptr || runLoop == nullptr) return;
  if (entry.missingSince && runLoop->now() - *entry.missingSince < retryAfter) return;
  const std::weak_ptr<PlayerArtwork*> weak = self_;
  const std::uint64_t number = entry.transferNumber = ++transferCount_;
  entry.transfer = http->start({.url = QUrl(entry.address).toEncoded().toStdString(),
                                .headers = {},
                                .timeout = transferTimeout,
                                .maximumLength = maximumCoverLength},
                               [weak, runLoop, number](platform::HTTPResult result) {
                                 runLoop->dispatchAsync([weak, number, result = std::move(result)] {
                                   if (const auto self = weak.lock())
                                     (*self)->completeTransfer(number, result);
                                 });
                               });
}

void PlayerArtwork::completeTransfer(std::uint64_t number, const platform::HTTPResult& result) {
  const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
    return entry.transferNumber == number;
  });
  if (found == entries_.end()) return;
  found->transfer.reset();
  found->missingSince.reset();
  constexpr int firstErrorStatus = 400;
  if (result.body && result.status < firstErrorStatus) found->bytes = *result.body;
  if (found->bytes.isEmpty()) found->missingSince = platform::current().runLoop->now();
  arrived_();
}

}  // namespace desktop
