#include "desktop/window/card_menu.h"

#include <QtGui/QScreen>
#include <algorithm>
#include <cmath>

#include "desktop/graphics/qt_canvas.h"
#include "desktop/window/card_style.h"
#include "desktop/window/compositing.h"
#include "desktop/window/localized.h"
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
constexpr double iconSide = 16;
constexpr double iconGap = 8;  // between an icon and its title
constexpr double keyGap = 24;  // between a title and its key
constexpr double keyOpacity = 0.55;
constexpr double disabledOpacity = 0.4;
constexpr double itemCornerRadius = 5;
constexpr const char* checkImage = "CardDone";

platform::NSSize textExtent(const std::string& text) {
  constexpr double widest = 600;
  return platform::boundingRectWithSize_options_attributes(
             text, {widest, itemHeight}, platform::NSStringDrawingUsesLineFragmentOrigin,
             sheetTextAttributes())
      .size;
}

/// The way back to the level before, which is the first item of every other.
MenuItem wayBack(const std::string& title) { return {.title = "‹  " + title}; }

}  // namespace

CardMenu::CardMenu(CardSurface& card, QtGraphics& graphics, Source source)
    : Sheet(card, graphics, Qt::Popup), source_(std::move(source)) {
  card_.setMenuHandler([this](QPoint point) { open(point); });
  card_.installEventFilter(this);
}

// Under Wayland the keyboard stays with the card while its menu is open.
bool CardMenu::eventFilter(QObject* object, QEvent* event) {
  if (!isVisible() || event->type() != QEvent::KeyPress) {
    return Sheet::eventFilter(object, event);
  }
  keyPressEvent(static_cast<QKeyEvent*>(event));
  return true;
}

CardMenu::~CardMenu() { card_.setMenuHandler(nullptr); }

void CardMenu::open(QPoint point) { open(point, source_()); }

void CardMenu::open(QPoint point, std::vector<MenuItem> items) {
  place_ = point;
  levels_.clear();
  levels_.push_back(std::move(items));
  pointedItem_.reset();
  fit();
}

void CardMenu::fit() {
  icons_.clear();
  for (const MenuItem& item : items()) icons_.push_back(item.icon ? item.icon() : nullptr);
  if (std::none_of(icons_.begin(), icons_.end(), [](const auto& icon) { return icon; })) {
    icons_.clear();
  }
  showAt(place_, fittingSize());
}

double CardMenu::textStart() const {
  return icons_.empty() ? textInset : textInset + iconSide + iconGap;
}

void CardMenu::choosePointed() {
  if (!pointedItem_) return;
  const MenuItem item = items()[*pointedItem_];
  if (!item.isEnabled) return;
  if (levels_.size() > 1 && *pointedItem_ == 0) return leaveLevel();
  if (item.children.empty()) {
    dismiss();
    if (item.choose) item.choose();
    return;
  }
  std::vector<MenuItem> level{wayBack(item.title)};
  level.insert(level.end(), item.children.begin(), item.children.end());
  levels_.push_back(std::move(level));
  pointedItem_.reset();
  fit();
}

void CardMenu::leaveLevel() {
  if (levels_.size() == 1) return dismiss();
  levels_.pop_back();
  pointedItem_.reset();
  fit();
}

void CardMenu::dismiss() {
  setMouseGrabEnabled(false);
  setKeyboardGrabEnabled(false);
  hide();
}

QSize CardMenu::fittingSize() const {
  double width = 0;
  for (const MenuItem& item : items()) {
    const double key = item.key.empty() ? 0 : keyGap + textExtent(item.key).width;
    width = std::max(width, textExtent(item.title).width + key);
  }
  return QSizeF(std::ceil(textStart() + width + textInset),
                2 * margin + itemHeight * static_cast<double>(items().size()))
      .toSize();
}

QRectF CardMenu::itemPlace(std::size_t index) const {
  return {margin, margin + itemHeight * static_cast<double>(index), width() - 2 * margin,
          itemHeight};
}

void CardMenu::point(QPointF position) {
  std::optional<std::size_t> pointed;
  for (std::size_t index = 0; index < items().size(); ++index) {
    if (itemPlace(index).contains(position)) pointed = index;
  }
  pointAt(pointed);
}

void CardMenu::pointAt(std::optional<std::size_t> index) {
  if (index == pointedItem_) return;
  pointedItem_ = index;
  update();
}

void CardMenu::movePointer(bool down) {
  const std::size_t count = items().size();
  if (count == 0) return;
  const std::size_t start = down ? count - 1 : 0;
  pointAt((pointedItem_.value_or(start) + (down ? 1 : count - 1)) % count);
}

bool CardMenu::event(QEvent* event) {
  if (event->type() == QEvent::Leave) point({-1, -1});
  return Sheet::event(event);
}

void CardMenu::exposeEvent(QExposeEvent* event) {
  // Presses elsewhere come here as well; only what is on the screen can ask for that.
  if (isExposed()) {
    setMouseGrabEnabled(true);
    setKeyboardGrabEnabled(true);
  }
  Sheet::exposeEvent(event);
}

void CardMenu::paintContent(platform::Canvas& canvas) {
  for (std::size_t index = 0; index < items().size(); ++index) paintItem(canvas, index);
}

void CardMenu::paintItem(platform::Canvas& canvas, std::size_t index) const {
  const MenuItem& item = items()[index];
  const QRectF place = itemPlace(index);
  const double bottom = height() - place.bottom();
  if (index == pointedItem_ && item.isEnabled) {
    canvas.fillRoundedRect(NSMakeRect(place.x(), bottom, place.width(), itemHeight),
                           itemCornerRadius, NSColor::labelColor().colorWithAlphaComponent(0.1));
  }
  if (item.beginsGroup) {
    canvas.fillRoundedRect(NSMakeRect(place.x(), height() - place.top(), place.width(), 1), 0,
                           NSColor::labelColor().colorWithAlphaComponent(0.15));
  }
  if (const auto check = item.isChecked ? platform::imageNamed(checkImage) : nullptr) {
    const double y = bottom + (itemHeight - checkSide) / 2;
    canvas.drawImage(*check, NSMakeRect(checkInset, y, checkSide, checkSide), 1);
  }
  canvas.save();
  if (!item.isEnabled) canvas.multiplyAlpha(disabledOpacity);
  if (const auto icon = icons_.empty() ? nullptr : icons_[index]) {
    const double y = bottom + (itemHeight - iconSide) / 2;
    canvas.drawImage(*icon, NSMakeRect(textInset, y, iconSide, iconSide), 1);
  }
  constexpr unsigned options = platform::NSStringDrawingUsesLineFragmentOrigin;
  platform::drawTextCentredInRect(
      canvas, {item.title, sheetTextAttributes()},
      NSMakeRect(textStart(), bottom, width() - textStart(), itemHeight), options, itemHeight);
  const std::string atEnd = item.children.empty() ? item.key : "›";
  if (!atEnd.empty()) {
    canvas.multiplyAlpha(keyOpacity);
    const double keyWidth = textExtent(atEnd).width;
    platform::drawTextCentredInRect(
        canvas, {atEnd, sheetTextAttributes()},
        NSMakeRect(place.right() - checkInset - keyWidth, bottom, keyWidth + 1, itemHeight),
        options, itemHeight);
  }
  canvas.restore();
}

void CardMenu::mousePressEvent(QMouseEvent* event) {
  if (!QRectF(QPointF(), size()).contains(event->position())) return dismiss();
  point(event->position());
}

void CardMenu::mouseMoveEvent(QMouseEvent* event) { point(event->position()); }

// The release that follows the opening finds nothing pointed at unless the pointer moved.
void CardMenu::mouseReleaseEvent(QMouseEvent*) { choosePointed(); }

void CardMenu::keyPressEvent(QKeyEvent* event) {
  switch (event->key()) {
    case Qt::Key_Escape:
      return dismiss();
    case Qt::Key_Left:
      return leaveLevel();
    case Qt::Key_Up:
    case Qt::Key_Down:
      return movePointer(event->key() == Qt::Key_Down);
    case Qt::Key_Right:
      if (pointedItem_ && !items()[*pointedItem_].children.empty()) choosePointed();
      return;
    case Qt::Key_Space:
    case Qt::Key_Return:
    case Qt::Key_Enter:
      return choosePointed();
    default:
      return;
  }
}

}  // namespace desktop
