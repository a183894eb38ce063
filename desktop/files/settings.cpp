#include "desktop/files/settings.h"

#include <cstdint>
#include <cstdlib>
#include <iostream>
#include <system_error>

#include "desktop/files/user_folders.h"

namespace desktop {

namespace {

namespace fs = std::filesystem;

const auto playerKey = QStringLiteral("Player/Followed");
const auto lastPlayerKey = QStringLiteral("Player/Last");
const auto onTopKey = QStringLiteral("Card/OnTop");
const auto hidesWhenIdleKey = QStringLiteral("Card/HideWhenIdle");
const auto statusIconKey = QStringLiteral("Card/StatusIcon");
const auto writesLibrariesKey = QStringLiteral("Ratings/WriteLibraries");
const auto scaleKey = QStringLiteral("Card/Scale");
const auto textScaleKey = QStringLiteral("Desktop/TextScale");
const auto lastPlaceKey = QStringLiteral("Place/Last");

// No desktop reaches farther (X11 coordinates have 16 bits).
constexpr std::int64_t farthest = 1 << 16;

/// A layout's name may hold what parts a key from its group.
QString placeKey(QString layout) {
  for (const char parting : {'/', '\\'}) layout.replace(QLatin1Char(parting), QLatin1Char('_'));
  return QStringLiteral("Places/") + layout;
}

std::unique_ptr<QSettings> openFile(const fs::path& file) {
  if (file.empty()) return nullptr;
  // Opening a pipe would never end.
  std::error_code error;
  const auto type = fs::status(file, error).type();
  const bool isMissing = type == fs::file_type::not_found;
  auto values = std::make_unique<QSettings>(
      QString::fromStdString(isMissing || type == fs::file_type::regular ? file : "/dev/null"),
      QSettings::IniFormat);
  if (isMissing) return values;
  // What is no INI file at all mostly reads as one without settings.
  const bool hasSettings = fs::file_size(file, error) == 0 || !values->allKeys().isEmpty();
  const bool isRead = values->status() == QSettings::NoError && hasSettings;
  if (type == fs::file_type::regular && isRead) return values;
  fs::path aside = file;
  aside += ".damaged";
  values.reset();
  fs::rename(file, aside, error);
  std::cerr << "virelune-widget: the settings cannot be read"
            << (error ? "" : "; they are now in " + aside.string()) << std::endl;
  if (error) return nullptr;
  return std::make_unique<QSettings>(QString::fromStdString(file), QSettings::IniFormat);
}

/// "x y"; none when it is not that, or no place on any desktop.
std::optional<QPoint> placeFromText(const QString& text) {
  const QStringList numbers = text.simplified().split(QLatin1Char(' '));
  if (numbers.size() != 2) return std::nullopt;
  bool isX = false;
  bool isY = false;
  const QPoint place(numbers[0].toInt(&isX), numbers[1].toInt(&isY));
  const bool isPlausible =
      std::abs(std::int64_t{place.x()}) < farthest && std::abs(std::int64_t{place.y()}) < farthest;
  return isX && isY && isPlausible ? std::optional(place) : std::nullopt;
}

}  // namespace

fs::path Settings::defaultFile() {
  const fs::path folder = userConfigFolder();
  return folder.empty() ? folder : folder / "virelune-widget" / "settings.ini";
}

Settings::Settings(const fs::path& file) : values_(openFile(file)) {}

QVariant Settings::value(const QString& key) const {
  return values_ ? values_->value(key) : QVariant();
}

std::string Settings::text(const QString& key) const { return value(key).toString().toStdString(); }

void Settings::set(const QString& key, const QVariant& value) {
  if (!values_ || values_->value(key) == value) return;
  values_->setValue(key, value);
  values_->sync();
}

std::optional<QPoint> Settings::position(const QString& layout) const {
  const auto own = placeFromText(value(placeKey(layout)).toString());
  return own ? own : placeFromText(value(lastPlaceKey).toString());
}

void Settings::setPosition(const QString& layout, QPoint position) {
  const auto text = QStringLiteral("%1 %2").arg(position.x()).arg(position.y());
  set(placeKey(layout), text);
  set(lastPlaceKey, text);
}

std::string Settings::player() const { return text(playerKey); }
void Settings::setPlayer(const std::string& name) { set(playerKey, QString::fromStdString(name)); }

std::string Settings::lastPlayer() const { return text(lastPlayerKey); }
void Settings::setLastPlayer(const std::string& desktopEntry) {
  set(lastPlayerKey, QString::fromStdString(desktopEntry));
}

bool Settings::isTrue(const QString& key, bool otherwise) const {
  const QString text = value(key).toString();
  if (text == QLatin1String("true")) return true;
  return text == QLatin1String("false") ? false : otherwise;
}

void Settings::setTrue(const QString& key, bool isTrue) {
  set(key, isTrue ? QStringLiteral("true") : QStringLiteral("false"));
}

bool Settings::isOnTop() const { return isTrue(onTopKey, false); }
void Settings::setOnTop(bool onTop) { setTrue(onTopKey, onTop); }

bool Settings::hidesWhenIdle() const { return isTrue(hidesWhenIdleKey, false); }
void Settings::setHidesWhenIdle(bool hides) { setTrue(hidesWhenIdleKey, hides); }

bool Settings::showsStatusIcon() const { return isTrue(statusIconKey, false); }
void Settings::setShowsStatusIcon(bool shows) { setTrue(statusIconKey, shows); }

bool Settings::writesLibraries() const { return isTrue(writesLibrariesKey, true); }
void Settings::setWritesLibraries(bool writes) { setTrue(writesLibrariesKey, writes); }

void Settings::setScale(double scale) { set(scaleKey, QString::number(scale)); }

std::optional<double> Settings::scale() const { return scaleAt(scaleKey); }

void Settings::setTextScale(double scale) { set(textScaleKey, QString::number(scale)); }
std::optional<double> Settings::textScale() const { return scaleAt(textScaleKey); }

std::optional<double> Settings::scaleAt(const QString& key) const {
  bool isNumber = false;
  const double scale = value(key).toString().toDouble(&isNumber);
  return isNumber && scale >= 1 && scale <= 4 ? std::optional(scale) : std::nullopt;
}

}  // namespace desktop
