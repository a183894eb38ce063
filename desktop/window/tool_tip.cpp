#include "desktop/window/tool_tip.h"

#include <QtGui/QMouseEvent>
#include <chrono>
#include <cmath>

#include "platform/foundation/attributed_string.h"
#include "platform/graphics/graphics.h"

namespace desktop {

namespace {

constexpr std::chrono::milliseconds restDuration{700};
constexpr QPoint distance(0, 20);  // from the pointer
constexpr double widest = 400;
constexpr double highest = 200;
constexpr double insetX = 10;
constexpr double insetY = 6;
constexpr unsigned options = platform::NSStringDrawingUsesLineFragmentOrigin |
                             platform::NSStringDrawingTruncatesLastVisibleLine;

}  // namespace

ToolTip::ToolTip(CardSurface& card, QtGraphics& graphics)
    : Sheet(card, graphics, Qt::ToolTip | Qt::WindowTransparentForInput) {
  rest_.setSingleShot(true);
  rest_.setInterval(restDuration);
  connect(&rest_, &QTimer::timeout, this, [this] { appear(); });
  card_.installEventFilter(this);
}

ToolTip::~ToolTip() = default;

bool ToolTip::eventFilter(QObject* object, QEvent* event) {
  switch (event->type()) {
    case QEvent::MouseMove:
      pointerMoved(*static_cast<const QMouseEvent*>(event));
      break;
    case QEvent::Leave:
    case QEvent::MouseButtonPress:
    case QEvent::KeyPress:
    case QEvent::Wheel:
    case QEvent::Hide:
      leave();
      break;
    default:
      break;
  }
  return Sheet::eventFilter(object, event);
}

void ToolTip::pointerMoved(const QMouseEvent& event) {
  if (event.buttons() != Qt::NoButton) return leave();
  pointer_ = event.position();
  place_ = event.globalPosition().toPoint();
  const void* view = card_.viewAt(pointer_);
  if (view == view_ && !rest_.isActive()) return;
  if (view != view_) leave();
  view_ = view;
  rest_.start();
}

void ToolTip::leave() {
  view_ = nullptr;
  rest_.stop();
  hide();
}

void ToolTip::appear() {
  const platform::NSView* view = card_.viewAt(pointer_);
  const auto text = view != nullptr ? view->toolTip() : std::nullopt;
  if (!text) return;
  text_ = *text;
  const auto extent = platform::boundingRectWithSize_options_attributes(
                          text_, {widest, highest}, options, sheetTextAttributes())
                          .size;
  const QSizeF size(std::ceil(std::min(extent.width, widest)) + 2 * insetX,
                    std::ceil(std::min(extent.height, highest)) + 2 * insetY);
  showAt(place_ + distance, size.toSize());
}

void ToolTip::paintContent(platform::Canvas& canvas) {
  const auto area =
      platform::NSMakeRect(insetX, insetY, width() - 2 * insetX, height() - 2 * insetY);
  platform::drawTextCentredInRect(canvas, {text_, sheetTextAttributes()}, area, options, highest);
}

}  // namespace desktop
