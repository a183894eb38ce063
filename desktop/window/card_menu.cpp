#include "desktop/window/card_menu.h"

#include <QtGui/QScreen>
#include <algorithm>
#include <cmath>

#include "desktop/graphics/qt_canvas.h"
#include "desktop/window/card_style.h"
#include "desktop/window/compositing.h"
#include "desktop/window/placement.h"
#include "platform/application/bundle.h"

namespace desktop {

namespace {

using platform::NSColor;
using platform::NSMakeRect;

constexpr double itemHeight = 24;
constexpr double margin = 5;       // above the first item, below the last and beside them all
constexpr double checkInset = 10;  // between the menu's edge and the check mark
constexpr double checkSide = 12;
constexpr double textInset = 26;
constexpr double textSize = 13;
constexpr double cornerRadius = 8;
constexpr double itemCornerRadius = 5;
constexpr const char* checkImage = "CardDone";

std::string localizedString(const char* key) {
  auto* bundle = platform::NSBundle::mainBundle();
  return bundle != nullptr ? bundle->localizedStringForKey_table(key, std::nullopt) : key;
}

platform::Dictionary textAttributes() {
  return {
      {platform::NSFontAttributeName, platform::NSFont{textSize, platform::NSFontWeight::regular}},
      {platform::NSForegroundColorAttributeName, NSColor::labelColor()}};
}

platform::NSSize textExtent(const std::string& text) {
  constexpr double widest = 600;
  return platform::boundingRectWithSize_options_attributes(
             text, {widest, itemHeight}, platform::NSStringDrawingUsesLineFragmentOrigin,
             textAttributes())
      .size;
}

}  // namespace

CardMenu::CardMenu(CardSurface& card, QtGraphics& graphics, const virelune::WidgetEntry& widget)
    : card_(card), graphics_(graphics), widget_(widget) {
  QSurfaceFormat translucent = format();
  translucent.setAlphaBufferSize(8);
  setFormat(translucent);
  setFlags(Qt::Popup | Qt::FramelessWindowHint);
  setTransientParent(&card);
  card_.setMenuHandler([this](QPoint point) { open(point); });
}

CardMenu::~CardMenu() { card_.setMenuHandler(nullptr); }

std::vector<CardMenu::Item> CardMenu::currentItems() {
  const bool isLaunching = widget_.isLaunchingAtLogin();
  const bool isOnTop = card_.isOnTop();
  std::vector<Item> items{
      {localizedString("0003.0001"), isLaunching,
       [this, isLaunching] { widget_.setLaunchingAtLogin(!isLaunching); }},
      {localizedString("0003.0002"), isOnTop, [this, isOnTop] { card_.setOnTop(!isOnTop); }},
      {localizedString("0003.0003"), false, [this] { card_.close(); }}};
  if (!canChoosePlace()) items.erase(items.begin() + 1);
  return items;
}

void CardMenu::open(QPoint point) {
  items_ = currentItems();
  pointedItem_.reset();
  const QSize wanted = fittingSize();
  QList<QRect> screens;
  if (card_.screen() != nullptr) screens.append(card_.screen()->availableGeometry());
  setGeometry(QRect(positionOnScreens(point, wanted, screens), wanted));
  show();
  update();
}

void CardMenu::dismiss() {
  setMouseGrabEnabled(false);
  setKeyboardGrabEnabled(false);
  hide();
}

QSize CardMenu::fittingSize() const {
  double width = 0;
  for (const Item& item : items_) width = std::max(width, textExtent(item.title).width);
  return QSizeF(std::ceil(textInset + width + textInset),
                2 * margin + itemHeight * static_cast<double>(items_.size()))
      .toSize();
}

QRectF CardMenu::itemPlace(std::size_t index) const {
  return {margin, margin + itemHeight * static_cast<double>(index), width() - 2 * margin,
          itemHeight};
}

void CardMenu::point(QPointF position) {
  std::optional<std::size_t> pointed;
  for (std::size_t index = 0; index < items_.size(); ++index) {
    if (itemPlace(index).contains(position)) pointed = index;
  }
  if (pointed == pointedItem_) return;
  pointedItem_ = pointed;
  update();
}

bool CardMenu::event(QEvent* event) {
  if (event->type() == QEvent::Leave) point({-1, -1});
  return QRasterWindow::event(event);
}

void CardMenu::exposeEvent(QExposeEvent* event) {
  // Presses elsewhere come here as well; only what is on the screen can ask for that.
  if (isExposed()) {
    setMouseGrabEnabled(true);
    setKeyboardGrabEnabled(true);
  }
  QRasterWindow::exposeEvent(event);
}

void CardMenu::paintEvent(QPaintEvent*) {
  const platform::Appearance appearance = card_.appearance();
  graphics_.setDisplay(devicePixelRatio(), appearance);
  QPainter painter(this);
  painter.setCompositionMode(QPainter::CompositionMode_Source);
  painter.fillRect(QRect(QPoint(), size()), Qt::transparent);
  painter.setCompositionMode(QPainter::CompositionMode_SourceOver);
  QtCanvas canvas(painter, height(), appearance);
  const double radius = isScreenComposited() ? cornerRadius : 0;
  const double line = 1 / devicePixelRatio();
  const auto whole = NSMakeRect(0, 0, width(), height());
  const auto inside = NSMakeRect(line, line, width() - 2 * line, height() - 2 * line);
  const NSColor background = cardColor(appearance).colorWithAlphaComponent(1);
  canvas.fillRoundedRect(whole, radius, background);
  canvas.fillRoundedRect(whole, radius, cardBorderColor(appearance));
  canvas.fillRoundedRect(inside, std::max(0.0, radius - line), background);
  for (std::size_t index = 0; index < items_.size(); ++index) paintItem(canvas, index);
}

void CardMenu::paintItem(platform::Canvas& canvas, std::size_t index) const {
  const Item& item = items_[index];
  const QRectF place = itemPlace(index);
  const double bottom = height() - place.bottom();
  if (index == pointedItem_) {
    canvas.fillRoundedRect(NSMakeRect(place.x(), bottom, place.width(), itemHeight),
                           itemCornerRadius, NSColor::labelColor().colorWithAlphaComponent(0.1));
  }
  if (const auto check = item.isChecked ? platform::imageNamed(checkImage) : nullptr) {
    const double y = bottom + (itemHeight - checkSide) / 2;
    canvas.drawImage(*check, NSMakeRect(checkInset, y, checkSide, checkSide), 1);
  }
  platform::drawTextCentredInRect(canvas, {item.title, textAttributes()},
                                  NSMakeRect(textInset, bottom, width() - textInset, itemHeight),
                                  platform::NSStringDrawingUsesLineFragmentOrigin, itemHeight);
}

void CardMenu::mousePressEvent(QMouseEvent* event) {
  if (!QRectF(QPointF(), size()).contains(event->position())) return dismiss();
  point(event->position());
}

void CardMenu::mouseMoveEvent(QMouseEvent* event) { point(event->position()); }

void CardMenu::mouseReleaseEvent(QMouseEvent*) {
  // The release that follows the opening finds nothing pointed at unless the pointer moved.
  if (!pointedItem_) return;
  const auto choose = items_[*pointedItem_].choose;
  dismiss();
  choose();
}

void CardMenu::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape) dismiss();
}

}  // namespace desktop
