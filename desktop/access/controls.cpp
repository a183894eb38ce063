#include "desktop/access/controls.h"

#include <QtCore/QString>
#include <algorithm>
#include <cmath>

#include "desktop/window/localized.h"
#include "desktop/window/mouse_input.h"
#include "platform/platform.h"
#include "platform/view/event.h"

namespace desktop {

namespace {

using platform::NSAccessibilityRole;

void addViews(const ControlView& view, std::vector<ControlView>& views) {
  if (view->isHidden()) return;
  const bool isNamed = !view->isAccessibilityHidden() &&
                       view->accessibilityRole() != NSAccessibilityRole::none &&
                       !view->accessibilityLabel().empty();
  if (isNamed) views.push_back(view);
  for (const auto& child : view->subviews()) addViews(child, views);
}

/// Where a view comes in reading: rows from the top, each from the left.
std::pair<long, double> readingPlace(const platform::NSView& view) {
  constexpr double rowHeight = 8;  // points
  const auto place = view.convertRectToWindow(view.bounds());
  return {-std::lround(place.maxY() / rowHeight), place.minX()};
}

/// Lets a view be operated as if the user had done it with these keys held.
template <class Work>
bool withModifiers(Qt::KeyboardModifiers modifiers, Work work) {
  platform::NSApplication& application = *platform::current().application;
  const auto before = application.currentEvent();
  application.setCurrentEvent(platform::NSEvent{.type = platform::NSEventType::keyDown,
                                                .locationInWindow = {},
                                                .modifierFlags = modifierFlags(modifiers)});
  const bool isDone = work();
  application.setCurrentEvent(before);
  return isDone;
}

QString timeText(double seconds) {
  const auto whole = static_cast<qint64>(seconds);
  return QStringLiteral("%1:%2").arg(whole / 60).arg(whole % 60, 2, 10, QLatin1Char('0'));
}

QString starsText(double halves) {
  const auto count = static_cast<int>(halves);
  if (count == 1) return QStringLiteral("½");
  return QString::number(count / 2) + (count % 2 != 0 ? QStringLiteral("½") : QString());
}

}  // namespace

std::vector<ControlView> accessibleViews(Card& card) {
  std::vector<ControlView> views;
  if (const auto& content = card.window().contentView()) addViews(content, views);
  std::stable_sort(views.begin(), views.end(), [](const ControlView& a, const ControlView& b) {
    return readingPlace(*a) < readingPlace(*b);
  });
  return views;
}

bool isControl(const platform::NSView& view) {
  return view.accessibilityRole() > NSAccessibilityRole::staticText;
}

bool press(platform::NSView& view, Qt::KeyboardModifiers modifiers) {
  return withModifiers(modifiers, [&view] { return view.accessibilityPerformPress(); });
}

bool step(platform::NSView& view, double steps, Qt::KeyboardModifiers modifiers) {
  const auto value = view.accessibilityValue();
  const bool isScale = value && view.accessibilityRole() != NSAccessibilityRole::toggle;
  return isScale && setValue(view, value->now + steps * value->step, modifiers);
}

bool setValue(platform::NSView& view, double value, Qt::KeyboardModifiers modifiers) {
  const auto scale = view.accessibilityValue();
  if (!scale) return false;
  const double wanted = std::clamp(value, 0.0, scale->maximum);
  return withModifiers(modifiers, [&] { return view.setAccessibilityValue(wanted); });
}

std::string valueText(const platform::NSView& view) {
  const auto value = view.accessibilityValue();
  if (!value) return {};
  switch (view.accessibilityRole()) {
    case NSAccessibilityRole::position:
      return QString::fromStdString(localizedString("0005.0004"))
          .replace(QStringLiteral("%1$@"), timeText(value->now))
          .replace(QStringLiteral("%2$@"), timeText(value->maximum))
          .toStdString();
    case NSAccessibilityRole::rating:
      return QString::fromStdString(localizedString("0005.0005"))
          .replace(QStringLiteral("%@"), starsText(value->now))
          .toStdString();
    case NSAccessibilityRole::none:
    case NSAccessibilityRole::staticText:
    case NSAccessibilityRole::button:
    case NSAccessibilityRole::toggle:
      break;
  }
  return {};
}

}  // namespace desktop
