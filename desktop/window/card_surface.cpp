#include "desktop/window/card_surface.h"

#include <QtGui/QGuiApplication>
#include <QtGui/QScreen>
#include <cmath>

#include "desktop/window/card_style.h"
#include "desktop/window/compositing.h"
#include "desktop/window/placement.h"

namespace desktop {

namespace {

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

CardSurface::CardSurface(Card& card, QtGraphics& graphics, const Options& options)
    : card_(card),
      graphics_(graphics),
      mouse_(card.window()),
      settings_(options.settings),
      placement_(*this, options.settings, options.cardNumber) {
  QSurfaceFormat translucent = format();
  translucent.setAlphaBufferSize(8);
  setFormat(translucent);
  setFlag(Qt::FramelessWindowHint);
  setFlag(Qt::WindowStaysOnTopHint, options.onTop && canChoosePlace());
  setTitle(options.title);

  card_.window().setMarkHandler([this](platform::NSRect rect) {
    const double y = card_.size().height - rect.maxY();
    update(
        areaOfWholePixels({rect.minX(), y, rect.size.width, rect.size.height}, devicePixelRatio()));
  });
  card_.setSizeHandler([this](platform::NSSize) { fitCard(); });
  card_.header().setCloseHandler([this] { close(); });
  colorScheme_.setChangeHandler([this] { update(); });
  connect(this, &QWindow::windowStateChanged, this, [this] { updateVisibility(); });
  fitCard();
}

CardSurface::~CardSurface() {
  placement_.save();
  colorScheme_.setChangeHandler(nullptr);
  card_.header().setCloseHandler(nullptr);
  card_.setSizeHandler(nullptr);
  card_.window().setMarkHandler(nullptr);
  card_.window().setVisible(false);
}

void CardSurface::open() {
  placement_.place();
  show();
}

void CardSurface::setOnTop(bool onTop) {
  setFlag(Qt::WindowStaysOnTopHint, onTop && canChoosePlace());
  if (settings_ != nullptr) settings_->setOnTop(onTop);
}

void CardSurface::bringToFront(const std::string& activationToken) {
  // Qt hands it on with the request, and forgets it then.
  if (!activationToken.empty()) qputenv("XDG_ACTIVATION_TOKEN", activationToken.c_str());
  setWindowStates(windowStates() & ~Qt::WindowMinimized);
  show();
  raise();
  requestActivate();
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
      placement_.save();
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
  if (isVisible()) placement_.moved();
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
