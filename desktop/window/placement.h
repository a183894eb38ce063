// Where the card lies on the screens: where it was put, remembered for each layout of them.
#pragma once

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QPoint>
#include <QtCore/QPointF>
#include <QtCore/QRect>
#include <QtCore/QTimer>
#include <QtGui/QScreen>
#include <QtGui/QWindow>
#include <memory>
#include <optional>

#include "desktop/files/settings.h"
#include "desktop/window/layer_surface.h"

namespace desktop {

/// The corner nearest to the wanted one at which a window of this size lies on one of the screens
/// as a whole. The wanted one when there is no screen.
QPoint positionOnScreens(QPoint wanted, QSize size, const QList<QRect>& screens);

/// Puts a window in its place and keeps it on the screens as a whole while these change, where the
/// desktop lets windows choose: under X11, and under some Wayland compositors while it stays above
/// the others. What the user moves is remembered; what the desktop moves when screens change is
/// not.
class Placement final : public QObject {
 public:
  /// The settings may be null. The session's second card and those after it lie beside the place of
  /// the first, and nothing is remembered of them.
  Placement(QWindow& window, Settings* settings, int cardNumber);
  ~Placement() override;

  void place();
  /// The window's upper left corner on the screens, as far as that is known.
  QPoint position() const;
  void moved();  ///< the window has moved; remembered a moment later
  void save();   ///< what is yet to be remembered

  bool canStayOnTop() const;
  bool isOnTop() const;
  /// Nothing where it cannot. A window that is shown may be hidden by it.
  void setOnTop(bool onTop);

  /// Moves the window with the pointer, which has gone this way already, until it is let go. False
  /// where that is left to the desktop.
  bool take(QPointF way);
  void letGo() { dragged_.reset(); }

 private:
  bool canChoosePlace() const;
  LayerSurface* layer() const;
  void put(QPoint wanted);
  void drag(QPointF way);
  void watch(QScreen* screen);
  void screensChanging();

  QWindow& window_;
  Settings* const settings_;
  const int cardNumber_;
  mutable std::optional<std::unique_ptr<LayerSurface>> layer_;  // asked for when it is needed
  std::optional<QPointF> dragged_;  // where the pointer has taken the window, off the screens too
  std::optional<QPoint> placed_;    // where it was put last, until the user moves it
  bool hasMoved_ = false;           // since the place was remembered
  QTimer saveTimer_;
  QTimer changeTimer_;  // runs while screens change
};

}  // namespace desktop
