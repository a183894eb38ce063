// From the mouse events of Qt to those of the views.
#pragma once

#include <QtCore/QPointF>
#include <QtGui/QMouseEvent>

#include "platform/view/window.h"

namespace desktop {

/// Passes the left button's events on to a window of views: y upwards, clicks counted, Alt as the
/// option key.
class MouseInput {
 public:
  explicit MouseInput(platform::NSWindow& window) : window_(window) {}

  /// The height (points) of the area that the events' positions belong to.
  void press(const QMouseEvent& event, double height);
  /// Also ends a press whose release went elsewhere.
  void move(const QMouseEvent& event, double height);
  void release(const QMouseEvent& event, double height);
  /// The pointer was taken over; no release will come.
  void cancel();

 private:
  void send(platform::NSEventType type, const QMouseEvent& event, double height);

  platform::NSWindow& window_;
  bool pressed_ = false;
  std::int64_t clickCount_ = 0;
  QPointF lastPressPosition_;
  std::uint64_t lastPressTime_ = 0;  // milliseconds
};

/// The modifier flags of an event of the views.
std::uint64_t modifierFlags(Qt::KeyboardModifiers modifiers);

}  // namespace desktop
