#include "desktop/covers/sources.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <QtCore/QByteArray>
#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QRegularExpression>
#include <QtCore/QUrl>
#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <functional>
#include <optional>
#include <string_view>
#include <tuple>

#include "desktop/files/file_descriptor.h"
#include "desktop/files/module.h"

namespace desktop {

namespace {

using platform::Data;

Data dataFrom(const QByteArray& bytes) {
  return Data(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
}

/// The content of a "data:" address; empty when it is malformed or too long.
Data decodedDataAddress(const QString& address) {
  const qsizetype comma = address.indexOf(QLatin1Char(','));
  if (comma < 0 || static_cast<std::size_t>(address.size()) > longestCover / 3 * 4) return {};
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

/// The bytes of a regular file; empty when it cannot be read or is too long.
Data contentOf(const QString& path) {
  // Opened without waiting: a pipe without a writer would hold the reader up.
  const FileDescriptor file(
      ::open(QFile::encodeName(path).constData(), O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOCTTY));
  struct stat status {};
  const bool isReadable = file && ::fstat(file.get(), &status) == 0 && S_ISREG(status.st_mode) &&
                          status.st_size <= static_cast<std::int64_t>(longestCover);
  if (!isReadable) return {};
  std::vector<std::uint8_t> bytes(static_cast<std::size_t>(status.st_size));
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

void offerAddressed(const CoverSearch& search, const CoverAccept& accept) {
  const QString& address = search.wanted.address;
  if (!search.fetched.isEmpty()) {
    accept(search.fetched);
  } else if (const QString path = localPath(address); !path.isEmpty()) {
    accept(contentOf(path));
  } else if (address.startsWith(QLatin1String("data:"), Qt::CaseInsensitive)) {
    accept(decodedDataAddress(address));
  }
}

void offerInFile(const CoverSearch& search, const CoverAccept& accept) {
  std::error_code error;
  if (!std::filesystem::is_regular_file(search.wanted.path, error)) return;
  static const auto pictureInFile =
      reinterpret_cast<PictureInFile*>(functionOfModule("pictures", pictureInFileName));
  std::vector<std::uint8_t> picture;
  if (pictureInFile != nullptr &&
      pictureInFile(search.wanted.path.c_str(), longestCover, picture)) {
    accept(Data(std::move(picture)));
  }
}

/// Letters and digits alone, since names of files cannot have all that titles have.
QString plainName(const QString& name) {
  QString plain;
  for (const QChar character : name.normalized(QString::NormalizationForm_C)) {
    if (character.isLetterOrNumber()) plain += character.toCaseFolded();
  }
  return plain;
}

/// The pictures of a folder that are called what covers are called, the largest file first.
QFileInfoList coversIn(const QDir& folder, const QString& album) {
  static const QStringList names{QStringLiteral("cover"), QStringLiteral("folder"),
                                 QStringLiteral("front"), QStringLiteral("album")};
  const QString albumName = plainName(album);
  QFileInfoList covers = folder.entryInfoList({QStringLiteral("*.jpg"), QStringLiteral("*.jpeg"),
                                               QStringLiteral("*.png"), QStringLiteral("*.webp")},
                                              QDir::Files | QDir::Hidden, QDir::NoSort);
  covers.removeIf([&](const QFileInfo& file) {
    const QString name = plainName(file.completeBaseName());
    return !names.contains(name) && (name.isEmpty() || name != albumName);
  });
  std::stable_sort(covers.begin(), covers.end(),
                   [](const QFileInfo& a, const QFileInfo& b) { return a.size() > b.size(); });
  return covers;
}

bool isDiscFolder(const QString& name) {
  static const QRegularExpression disc(QStringLiteral("^(cd|dvd|disc|disk)[ _-]*[0-9]+\\b"),
                                       QRegularExpression::CaseInsensitiveOption);
  return disc.match(name).hasMatch();
}

void offerInFolder(const CoverSearch& search, const CoverAccept& accept) {
  if (search.wanted.path.empty()) return;
  const QFileInfo track(QFile::decodeName(search.wanted.path.c_str()));
  const QString album = QString::fromStdString(search.wanted.album);
  QDir folder = track.dir();
  QFileInfoList covers = coversIn(folder, album);
  if (isDiscFolder(folder.dirName()) && folder.cdUp()) covers += coversIn(folder, album);
  std::ignore = std::find_if(covers.begin(), covers.end(), [&](const QFileInfo& file) {
    return accept(contentOf(file.filePath()));
  });
}

}  // namespace

const std::array<CoverSource, 3>& coverSources() {
  static constexpr std::array<CoverSource, 3> sources{{
      {.offer = offerAddressed, .mayStandIn = true},
      {.offer = offerInFile, .mayStandIn = false},
      {.offer = offerInFolder, .mayStandIn = false},
  }};
  return sources;
}

bool StandIns::isOne(const Data& picture, const std::string& album) {
  if (album.empty()) return false;
  constexpr std::size_t remembered = 64;
  const std::size_t hash = std::hash<std::string_view>()(picture.view());
  const std::lock_guard lock(mutex_);
  const auto found =
      std::find_if(seen_.begin(), seen_.end(), [&](const Seen& seen) { return seen.hash == hash; });
  if (found == seen_.end()) {
    if (seen_.size() == remembered) seen_.erase(seen_.begin());
    seen_.push_back({hash, album, false});
    return false;
  }
  found->standsIn = found->standsIn || found->album != album;
  const bool standsIn = found->standsIn;
  std::rotate(found, found + 1, seen_.end());
  return standsIn;
}

}  // namespace desktop
