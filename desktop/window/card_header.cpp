#include "desktop/window/card_header.h"

#include "desktop/window/localized.h"
#include "platform/application/bundle.h"
#include "platform/graphics/canvas.h"
#include "platform/graphics/graphics.h"

namespace desktop {

namespace {

using platform::NSColor;
using platform::NSPoint;
using platform::NSRect;

constexpr double controlSide = 18;
constexpr double controlInset = 3;  // between a control's edge and its image
constexpr double rightMargin = 6;
constexpr double controlGap = 2;
constexpr double titleInset = 12;
constexpr double titleSize = 11;

constexpr double restingOpacity = 0.45;
constexpr double hoveredOpacity = 0.85;
constexpr double lightOpacity = 0.10;

constexpr const char* editImage = "CardEdit";
constexpr const char* doneImage = "CardDone";
constexpr const char* closeImage = "CardClose";

}  // namespace

CardHeaderButton::CardHeaderButton(NSRect frame) : NSButton(frame) {
  setBordered(false);
  setImageScaling(platform::NSImageScaling::proportionallyUpOrDown);
}

void CardHeaderButton::setHovered(bool hovered) {
  if (hovered == hovered_) return;
  hovered_ = hovered;
  setNeedsDisplay(true);
}

void CardHeaderButton::setOn(bool on) {
  if (on == on_) return;
  on_ = on;
  setNeedsDisplay(true);
}

void CardHeaderButton::drawRect(NSRect) {
  auto* context = platform::NSGraphicsContext::current();
  if (context == nullptr) return;
  platform::Canvas& canvas = context->canvas();
  const bool lit = hovered_ || on_;
  if (lit) {
    const double light = isHighlighted() ? 2 * lightOpacity : lightOpacity;
    canvas.fillRoundedRect(bounds(), controlSide / 2,
                           NSColor::labelColor().colorWithAlphaComponent(light));
  }
  if (!image()) return;
  const NSRect place =
      platform::NSMakeRect(controlInset, controlInset, bounds().size.width - 2 * controlInset,
                           bounds().size.height - 2 * controlInset);
  canvas.drawImage(*image(), place, lit ? hoveredOpacity : restingOpacity);
}

CardHeader::CardHeader(NSRect frame, std::string title) : NSView(frame), title_(std::move(title)) {}

bool CardHeader::init() {
  const double closeX = bounds().size.width - rightMargin - controlSide;
  closeButton_ = addButton(closeX, closeImage, &CardHeader::clickedCloseButton);
  closeButton_->setAccessibilityLabel(localizedString("0003.0003"));
  editButton_ =
      addButton(closeX - controlGap - controlSide, editImage, &CardHeader::clickedEditButton);
  editButton_->setAccessibilityLabel(localizedString("0003.0015"));
  editButton_->setAccessibilityState(false);
  editButton_->setHidden(true);
  return true;
}

std::shared_ptr<CardHeaderButton> CardHeader::addButton(double x, const char* imageName,
                                                        platform::Selector action) {
  const double y = (bounds().size.height - controlSide) / 2;
  auto button =
      platform::make<CardHeaderButton>(platform::NSMakeRect(x, y, controlSide, controlSide));
  button->setImage(platform::imageNamed(imageName));
  button->setTarget(shared_from_this());
  button->setAction(std::move(action));
  addSubview(button);
  return button;
}

void CardHeader::setEditHandler(std::function<void()> handler) {
  editHandler_ = std::move(handler);
  editButton_->setHidden(!editHandler_);
}

void CardHeader::setEditing(bool editing) {
  editButton_->setOn(editing);
  editButton_->setAccessibilityState(editing);
  editButton_->setImage(platform::imageNamed(editing ? doneImage : editImage));
}

bool CardHeader::isHandle(NSPoint pointInWindow) {
  const NSPoint point = convertPointFromWindow(pointInWindow);
  return hitTest({point.x + frame().origin.x, point.y + frame().origin.y}) == this;
}

void CardHeader::pointerMoved(std::optional<NSPoint> pointInWindow) {
  for (const auto& button : {editButton_, closeButton_}) {
    button->setHovered(
        pointInWindow &&
        platform::NSPointInRect(button->convertPointFromWindow(*pointInWindow), button->bounds()));
  }
}

void CardHeader::drawRect(NSRect) {
  auto* context = platform::NSGraphicsContext::current();
  if (context == nullptr) return;
  platform::NSAttributedString title{title_, {}};
  title.attributes[platform::NSFontAttributeName] =
      platform::NSFont{titleSize, platform::NSFontWeight::medium};
  title.attributes[platform::NSForegroundColorAttributeName] =
      NSColor::labelColor().colorWithAlphaComponent(0.6);
  constexpr unsigned options = platform::NSStringDrawingUsesLineFragmentOrigin |
                               platform::NSStringDrawingTruncatesLastVisibleLine;
  const double width = editButton_->frame().minX() - 2 * titleInset;
  platform::drawTextCentredInRect(context->canvas(), title,
                                  platform::NSMakeRect(titleInset, 0, width, bounds().size.height),
                                  options, titleSize);
}

bool CardHeader::clickedEditButton(platform::NSObject*) {
  if (!editHandler_) return false;
  editHandler_();
  return true;
}

bool CardHeader::clickedCloseButton(platform::NSObject*) {
  if (!closeHandler_) return false;
  closeHandler_();
  return true;
}

}  // namespace desktop
