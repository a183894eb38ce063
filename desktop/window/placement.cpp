#include "desktop/window/placement.h"

#include <QtCore/QFile>
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <limits>
#include <string>

#include "desktop/files/user_folders.h"
#include "desktop/files/whole_file.h"

namespace desktop {

namespace {

// No desktop reaches farther (X11 coordinates have 16 bits).
constexpr std::int64_t farthest = 1 << 16;

QPoint positionWithin(QPoint wanted, QSize size, const QRect& screen) {
  const auto fitted = [](int value, int length, int start, int room) {
    return std::max(start, std::min(value, start + room - length));
  };
  return {fitted(wanted.x(), size.width(), screen.x(), screen.width()),
          fitted(wanted.y(), size.height(), screen.y(), screen.height())};
}

}  // namespace

std::filesystem::path positionFile() {
  const std::filesystem::path folder = userStateFolder();
  return folder.empty() ? folder : folder / "virelune-widget" / "position";
}

std::optional<QPoint> readPosition(const std::filesystem::path& path) {
  constexpr qint64 longestLine = 64;
  QFile file(QString::fromStdString(path.string()));
  if (path.empty() || !file.open(QIODevice::ReadOnly)) return std::nullopt;
  const QList<QByteArray> numbers = file.read(longestLine).simplified().split(' ');
  if (numbers.size() != 2) return std::nullopt;
  bool isX = false;
  bool isY = false;
  const QPoint position(numbers[0].toInt(&isX), numbers[1].toInt(&isY));
  const bool isPlausible = std::abs(std::int64_t{position.x()}) < farthest &&
                           std::abs(std::int64_t{position.y()}) < farthest;
  return isX && isY && isPlausible ? std::optional(position) : std::nullopt;
}

bool writePosition(const std::filesystem::path& path, QPoint position) {
  const std::string line = std::to_string(position.x()) + ' ' + std::to_string(position.y()) + '\n';
  return !path.empty() && makeFolder(path.parent_path()) && writeWholeFile(path, line);
}

QPoint positionOnScreens(QPoint wanted, QSize size, const QList<QRect>& screens) {
  QPoint best = wanted;
  int shortest = std::numeric_limits<int>::max();
  for (const QRect& screen : screens) {
    const QPoint position = positionWithin(wanted, size, screen);
    const int distance = (position - wanted).manhattanLength();
    if (distance >= shortest) continue;
    shortest = distance;
    best = position;
  }
  return best;
}

}  // namespace desktop
