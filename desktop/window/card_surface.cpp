#include "desktop/window/card_surface.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <chrono>
#include <cmath>

#include "desktop/window/card_style.h"
#include "desktop/window/compositing.h"
#include "desktop/window/placement.h"

namespace desktop {

namespace {

constexpr int firstPlaceMargin = 24;  // from the screen's upper right corner

/// Only there does a window know, and choose, its place.
bool canChoosePlace() { return QGuiApplication::platformName() == "xcb"; }

/// The pixels of a card that lie within its corners.
QRegion cardMask(QSize size) {
  const int rows = static_cast<int>(cardCornerRadius);
  QRegion mask(0, rows, size.width(), size.height() - 2 * rows);
  for (int row = 0; row < rows; ++row) {
    const double rise = cardCornerRadius - row - 0.5;
    const double run = std::sqrt(cardCornerRadius * cardCornerRadius - rise * rise);
    const int inset = qRound(cardCornerRadius - run);
    const int width = size.width() - 2 * inset;
    mask += QRect(inset, row, width, 1);
    mask += QRect(inset, size.height() - 1 - row, width, 1);
  }
  return mask;
}

}  // namespace

CardSurface::CardSurface(Card& card, QtGraphics& graphics, const QString& title, bool onTop)
    : card_(card), graphics_(graphics), mouse_(card.window()) {
  QSurfaceFormat translucent = format();
  translucent.setAlphaBufferSize(8);
  setFormat(translucent);
  setFlag(Qt::FramelessWindowHint);
  setFlag(Qt::WindowStaysOnTopHint, onTop);
  setTitle(title);

  card_.window().setMarkHandler([this](platform::NSRect rect) {
    const double y = card_.size().height - rect.maxY();
    update(QRectF(rect.minX(), y, rect.size.width, rect.size.height).toAlignedRect());
  });
  card_.setSizeHandler([this](platform::NSSize) { fitCard(); });
  card_.header().setCloseHandler([this] { close(); });
  colorScheme_.setChangeHandler([this] { update(); });
  connect(this, &QWindow::windowStateChanged, this, [this] { updateVisibility(); });

  saveTimer_.setSingleShot(true);
  saveTimer_.setInterval(std::chrono::milliseconds(500));  // a move is a series of places
  connect(&saveTimer_, &QTimer::timeout, this, [this] { savePosition(); });
  fitCard();
}

CardSurface::~CardSurface() {
  if (saveTimer_.isActive()) savePosition();
  colorScheme_.setChangeHandler(nullptr);
  card_.header().setCloseHandler(nullptr);
  card_.setSizeHandler(nullptr);
  card_.window().setMarkHandler(nullptr);
  card_.window().setVisible(false);
}

void CardSurface::open() {
  place();
  show();
}

void CardSurface::place() {
  if (!canChoosePlace() || screen() == nullptr) return;
  QList<QRect> screens;
  for (const QScreen* available : QGuiApplication::screens()) {
    screens.append(available->availableGeometry());
  }
  const QRect first = screen()->availableGeometry();
  const QPoint corner(first.x() + first.width() - width() - firstPlaceMargin,
                      first.y() + firstPlaceMargin);
  const QPoint wanted = readPosition(positionFile()).value_or(corner);
  setPosition(positionOnScreens(wanted, size(), screens));
}

void CardSurface::savePosition() {
  saveTimer_.stop();
  if (canChoosePlace()) writePosition(positionFile(), position());
}

void CardSurface::fitCard() {
  const QSize points(static_cast<int>(std::ceil(card_.size().width)),
                     static_cast<int>(std::ceil(card_.size().height)));
  // The order matters: a window manager must never see a maximum below the size.
  setMinimumSize(QSize(0, 0));
  setMaximumSize(points);
  resize(points);
  setMinimumSize(points);
  updateCompositing();
}

void CardSurface::updateCompositing() {
  const bool isComposited = isScreenComposited();
  card_.setTranslucent(isComposited);
  const QRegion wanted = isComposited ? QRegion() : cardMask(size());
  if (wanted != mask()) setMask(wanted);
}

void CardSurface::updateVisibility() {
  const bool isSeen = isExposed() && !windowStates().testFlag(Qt::WindowMinimized);
  card_.window().setVisible(isSeen);
}

bool CardSurface::event(QEvent* event) {
  switch (event->type()) {
    case QEvent::ApplicationPaletteChange:
    case QEvent::ThemeChange:
      colorScheme_.paletteChanged();
      break;
    case QEvent::Leave:
      card_.header().pointerMoved(std::nullopt);
      break;
    case QEvent::Close:
      if (saveTimer_.isActive()) savePosition();
      break;
    default:
      break;
  }
  return QRasterWindow::event(event);
}

void CardSurface::exposeEvent(QExposeEvent* event) {
  // The views learn that they are seen before they are painted for the first time.
  if (isExposed()) updateCompositing();
  updateVisibility();
  QRasterWindow::exposeEvent(event);
}

void CardSurface::paintEvent(QPaintEvent* event) {
  const platform::Appearance appearance = colorScheme_.appearance();
  graphics_.setDisplay(devicePixelRatio(), appearance);
  {
    QPainter painter(this);
    card_.paint(painter, event->region(), appearance);
  }
  if (paintObserver_) paintObserver_(event->region());
}

void CardSurface::moveEvent(QMoveEvent* event) {
  if (isVisible()) saveTimer_.start();
  QRasterWindow::moveEvent(event);
}

platform::NSPoint CardSurface::cardPoint(QPointF position) const {
  return {position.x(), card_.size().height - position.y()};
}

void CardSurface::mousePressEvent(QMouseEvent* event) {
  grip_.reset();
  if (event->button() == Qt::RightButton && menuHandler_) {
    menuHandler_(event->globalPosition().toPoint());
    return;
  }
  if (event->button() == Qt::LeftButton && card_.header().isHandle(cardPoint(event->position()))) {
    grip_ = event->position();
    return;
  }
  mouse_.press(*event, card_.size().height);
}

void CardSurface::mouseMoveEvent(QMouseEvent* event) {
  if (grip_) {
    moveCard(*event);
    return;
  }
  card_.header().pointerMoved(cardPoint(event->position()));
  mouse_.move(*event, card_.size().height);
}

void CardSurface::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) grip_.reset();
  mouse_.release(*event, card_.size().height);
}

void CardSurface::moveCard(const QMouseEvent& event) {
  if (!event.buttons().testFlag(Qt::LeftButton)) {
    grip_.reset();
    return;
  }
  // The window manager moves it best, with its snapping and its edges; without one we do.
  if (startSystemMove()) {
    grip_.reset();
  } else {
    setPosition((event.globalPosition() - *grip_).toPoint());
  }
}

void CardSurface::keyPressEvent(QKeyEvent* event) {
  platform::NSEvent key;
  key.type = platform::NSEventType::keyDown;
  key.modifierFlags = modifierFlags(event->modifiers());
  if (event->key() == Qt::Key_Escape) key.keyCode = platform::NSKeyCodeEscape;
  card_.window().sendEvent(key);
}

}  // namespace desktop
