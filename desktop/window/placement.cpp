#include "desktop/window/placement.h"

#include <QtCore/QStringList>
#include <QtGui/QGuiApplication>
#include <algorithm>
#include <chrono>
#include <limits>
#include <utility>

namespace desktop {

namespace {

using std::chrono::milliseconds;

constexpr int firstPlaceMargin = 24;       // from the screen's upper right corner
constexpr int cardDistance = 28;           // between the places of two cards, either way
constexpr int barHeight = 24;              // of a bar at the top, which Wayland does not tell of
constexpr milliseconds moveDuration{500};  // a move is a series of places
// Screens change one after the other, and window managers move windows a moment after.
constexpr milliseconds changeDuration{500};

bool isWayland() { return QGuiApplication::platformName().startsWith(QLatin1String("wayland")); }

QList<QRect> screenAreas() {
  QList<QRect> areas;
  for (const QScreen* screen : QGuiApplication::screens()) {
    areas.append(screen->availableGeometry());
  }
  return areas;
}

QPoint positionWithin(QPoint wanted, QSize size, const QRect& screen) {
  const auto fitted = [](int value, int length, int start, int room) {
    return std::max(start, std::min(value, start + room - length));
  };
  return {fitted(wanted.x(), size.width(), screen.x(), screen.width()),
          fitted(wanted.y(), size.height(), screen.y(), screen.height())};
}

/// Tells the screens of the moment, and how they lie, from others.
QString layoutName() {
  QStringList screens;
  for (const QScreen* screen : QGuiApplication::screens()) {
    const QRect place = screen->geometry();
    screens.append(QStringLiteral("%1 %2x%3+%4+%5")
                       .arg(screen->name())
                       .arg(place.width())
                       .arg(place.height())
                       .arg(place.x())
                       .arg(place.y()));
  }
  screens.sort();
  return screens.join(QLatin1Char(' '));
}

}  // namespace

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

Placement::Placement(QWindow& window, Settings* settings, int cardNumber)
    : window_(window), settings_(settings), cardNumber_(std::max(cardNumber, 1)) {
  saveTimer_.setSingleShot(true);
  saveTimer_.setInterval(moveDuration);
  connect(&saveTimer_, &QTimer::timeout, this, [this] { save(); });
  changeTimer_.setSingleShot(true);
  changeTimer_.setInterval(changeDuration);
  connect(&changeTimer_, &QTimer::timeout, this, [this] { place(); });
  for (QScreen* screen : QGuiApplication::screens()) watch(screen);
  connect(qGuiApp, &QGuiApplication::screenAdded, this, [this](QScreen* screen) {
    watch(screen);
    screensChanging();
  });
  connect(qGuiApp, &QGuiApplication::screenRemoved, this, [this] { screensChanging(); });
}

Placement::~Placement() { save(); }

void Placement::watch(QScreen* screen) {
  connect(screen, &QScreen::geometryChanged, this, [this] { screensChanging(); });
  connect(screen, &QScreen::availableGeometryChanged, this, [this] { screensChanging(); });
}

void Placement::screensChanging() {
  hasMoved_ = false;
  saveTimer_.stop();
  changeTimer_.start();
}

void Placement::place() {
  const QScreen* first = QGuiApplication::primaryScreen();
  if (!canChoosePlace() || first == nullptr) return;
  const QRect room = first->availableGeometry();
  const int bar = isWayland() ? barHeight : 0;
  const QPoint corner(room.x() + room.width() - window_.width() - firstPlaceMargin,
                      room.y() + bar + firstPlaceMargin);
  const auto remembered = settings_ != nullptr ? settings_->position(layoutName()) : std::nullopt;
  const QPoint beside = QPoint(-cardDistance, cardDistance) * (cardNumber_ - 1);
  put(remembered.value_or(corner) + beside);
}

QPoint Placement::position() const {
  return isWayland() ? placed_.value_or(window_.position()) : window_.position();
}

void Placement::put(QPoint wanted) {
  placed_ = positionOnScreens(wanted, window_.size(), screenAreas());
  if (isWayland()) {
    layer()->setPlace(*placed_);
  } else {
    window_.setPosition(*placed_);
  }
}

void Placement::moved() {
  if (isWayland() || changeTimer_.isActive() || window_.position() == placed_) return;
  placed_.reset();
  hasMoved_ = true;
  saveTimer_.start();
}

void Placement::save() {
  saveTimer_.stop();
  if (!std::exchange(hasMoved_, false)) return;
  if (settings_ == nullptr || !canChoosePlace() || cardNumber_ > 1) return;
  settings_->setPosition(layoutName(), position());
}

LayerSurface* Placement::layer() const {
  if (!layer_) layer_ = makeLayerSurface(window_);
  return layer_->get();
}

bool Placement::canStayOnTop() const { return !isWayland() || layer() != nullptr; }

bool Placement::isOnTop() const { return window_.flags().testFlag(Qt::WindowStaysOnTopHint); }

bool Placement::canChoosePlace() const { return !isWayland() || isOnTop(); }

void Placement::setOnTop(bool onTop) {
  if (onTop == isOnTop() || !canStayOnTop()) return;
  window_.setFlag(Qt::WindowStaysOnTopHint, onTop);
  if (!isWayland()) return;
  placed_.reset();
  layer()->setOnTop(onTop);
  layer()->setPointerHandler([this](QPointF way) { drag(way); });
}

bool Placement::take(QPointF way) {
  if (!isWayland() || !isOnTop() || !placed_) return false;
  dragged_ = *placed_;
  drag(way);
  return true;
}

void Placement::drag(QPointF way) {
  if (!dragged_) return;
  *dragged_ += way;
  put(dragged_->toPoint());
  hasMoved_ = true;
  saveTimer_.start();
}

}  // namespace desktop
