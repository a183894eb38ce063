#include "desktop/window/card_surface.h"

#include <QtGui/QAccessible>
#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>
#include <QtGui/QScreen>
#include <chrono>
#include <cmath>
#include <utility>

#include "desktop/graphics/qt_canvas.h"
#include "desktop/window/card_style.h"
#include "desktop/window/compositing.h"
#include "desktop/window/placement.h"

namespace desktop {

namespace {

constexpr double focusRingWidth = 2;
constexpr double focusRingRadius = 4;

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
  if (options.onTop) placement_.setOnTop(true);
  setTitle(options.title);

  card_.window().setMarkHandler([this](platform::NSRect rect) { mark(rect); });
  noticeEnd_.setSingleShot(true);
  connect(&noticeEnd_, &QTimer::timeout, this, [this] {
    notice_.clear();
    update();
  });
  card_.setSizeHandler([this](platform::NSSize) { fitCard(); });
  card_.header().setCloseHandler([this] { close(); });
  style_.setChangeHandler([this] {
    update();
    if (textScaleHandler_ && style_.textScale()) textScaleHandler_(*style_.textScale());
  });
  connect(this, &QWindow::windowStateChanged, this, [this] { updateVisibility(); });
  qGuiApp->installEventFilter(this);
  fitCard();
}

CardSurface::~CardSurface() {
  placement_.save();
  style_.setChangeHandler(nullptr);
  card_.header().setCloseHandler(nullptr);
  card_.setSizeHandler(nullptr);
  card_.window().setMarkHandler(nullptr);
  card_.window().setVisible(false);
}

void CardSurface::mark(platform::NSRect rect) {
  const double y = card_.size().height - rect.maxY();
  update(
      areaOfWholePixels({rect.minX(), y, rect.size.width, rect.size.height}, devicePixelRatio()));
}

void CardSurface::open() {
  placement_.place();
  show();
}

void CardSurface::setOnTop(bool onTop) {
  const bool wasShown = isVisible();
  placement_.setOnTop(onTop);
  if (settings_ != nullptr) settings_->setOnTop(onTop);
  if (wasShown && !isVisible()) open();
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

bool CardSurface::eventFilter(QObject* object, QEvent* event) {
  if (event->type() == QEvent::Quit) isQuitting_ = true;
  return QRasterWindow::eventFilter(object, event);
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
      style_.paletteChanged();
      break;
    case QEvent::Leave:
      card_.header().pointerMoved(std::nullopt);
      break;
    case QEvent::Close:
      placement_.save();
      if (isQuitting_ || !closeHandler_ || !closeHandler_()) break;
      event->ignore();
      return true;
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
  const platform::Appearance appearance = style_.appearance();
  graphics_.setDisplay(devicePixelRatio(), appearance);
  {
    QPainter painter(this);
    card_.paint(painter, event->region(), appearance);
    paintAbove(painter, appearance);
  }
  if (paintObserver_) paintObserver_(event->region());
}

QAccessibleInterface* CardSurface::accessibleRoot() const {
  return accessibleRoot_ ? accessibleRoot_() : QRasterWindow::accessibleRoot();
}

// What lies above the card for a while. The painter is clipped to what is painted again.

void CardSurface::paintAbove(QPainter& painter, platform::Appearance appearance) const {
  QtCanvas canvas(painter, card_.size().height, appearance);
  if (focus_) {
    const QRectF ring(focus_->minX(), card_.size().height - focus_->maxY(), focus_->size.width,
                      focus_->size.height);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(QGuiApplication::palette().color(QPalette::Highlight), focusRingWidth));
    painter.drawRoundedRect(ring.adjusted(focusRingWidth / 2, focusRingWidth / 2,
                                          -focusRingWidth / 2, -focusRingWidth / 2),
                            focusRingRadius, focusRingRadius);
  }
  if (notice_.empty()) return;
  constexpr double height = 22;
  const platform::NSAttributedString text{
      notice_,
      {{platform::NSFontAttributeName, platform::NSFont{12, platform::NSFontWeight::medium}},
       {platform::NSForegroundColorAttributeName, platform::NSColor::labelColor()}}};
  constexpr unsigned options = platform::NSStringDrawingUsesLineFragmentOrigin;
  const platform::NSSize card = card_.size();
  const double width = 28 + platform::boundingRectWithSize_options_attributes(
                                notice_, {card.width, height}, options, text.attributes)
                                .size.width;
  const auto place =
      platform::NSMakeRect((card.width - width) / 2, (card.height - height) / 2, width, height);
  const double line = 1 / devicePixelRatio();
  const auto inside = platform::NSMakeRect(place.minX() + line, place.minY() + line,
                                           width - 2 * line, height - 2 * line);
  const platform::NSColor background = cardColor(appearance).colorWithAlphaComponent(1);
  canvas.fillRoundedRect(place, height / 2, background);
  canvas.fillRoundedRect(place, height / 2, cardBorderColor(appearance));
  canvas.fillRoundedRect(inside, height / 2 - line, background);
  auto centred = text;
  centred.attributes[platform::NSParagraphStyleAttributeName] =
      platform::NSParagraphStyle{platform::NSTextAlignment::center};
  platform::drawTextCentredInRect(canvas, centred, place, options, height);
}

void CardSurface::setFocusRing(std::optional<platform::NSRect> focus) {
  for (const auto& ring : {std::exchange(focus_, focus), focus}) {
    if (ring) mark(*ring);
  }
}

void CardSurface::showNotice(const std::string& text) {
  constexpr std::chrono::seconds shown{1};
  notice_ = text;
  noticeEnd_.start(shown);
  update();
}

QRect CardSurface::placeOnScreen(platform::NSRect rect) const {
  const QRectF place(rect.minX(), card_.size().height - rect.maxY(), rect.size.width,
                     rect.size.height);
  return place.translated(placement_.position()).toAlignedRect();
}

void CardSurface::moveEvent(QMoveEvent* event) {
  if (isVisible()) placement_.moved();
  QRasterWindow::moveEvent(event);
}

platform::NSPoint CardSurface::cardPoint(QPointF position) const {
  return {position.x(), card_.size().height - position.y()};
}

const platform::NSView* CardSurface::viewAt(QPointF position) const {
  const auto content = card_.window().contentView();
  return content ? content->hitTest(cardPoint(position)) : nullptr;
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
  placement_.letGo();
  mouse_.release(*event, card_.size().height);
}

void CardSurface::moveCard(const QMouseEvent& event) {
  if (!event.buttons().testFlag(Qt::LeftButton)) {
    grip_.reset();
    return;
  }
  // The window manager moves it best, with its snapping and its edges; without one we do.
  if (placement_.take(event.position() - *grip_) || startSystemMove()) {
    grip_.reset();
  } else {
    setPosition((event.globalPosition() - *grip_).toPoint());
  }
}

void CardSurface::openMenu() {
  if (menuHandler_) menuHandler_(geometry().center());
}

void CardSurface::wheelEvent(QWheelEvent* event) {
  if (wheelHandler_) wheelHandler_(*event);
}

void CardSurface::keyPressEvent(QKeyEvent* event) {
  if (keyHandler_ && keyHandler_(*event)) return;
  platform::NSEvent key;
  key.type = platform::NSEventType::keyDown;
  key.modifierFlags = modifierFlags(event->modifiers());
  if (event->key() == Qt::Key_Escape) key.keyCode = platform::NSKeyCodeEscape;
  card_.window().sendEvent(key);
}

}  // namespace desktop
