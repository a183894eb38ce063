// Where the card lies on the screens: where it was put, remembered for each layout of them.
#pragma once

#include <QtCore/QList>
#include <QtCore/QObject>
#include <QtCore/QPoint>
#include <QtCore/QRect>
#include <QtCore/QTimer>
#include <QtGui/QScreen>
#include <QtGui/QWindow>
#include <optional>

#include "desktop/files/settings.h"

namespace desktop {

/// True where windows know and choose their place, and whether they stay above others.
bool canChoosePlace();

/// The corner nearest to the wanted one at which a window of this size lies on one of the screens
/// as a whole. The wanted one when there is no screen.
QPoint positionOnScreens(QPoint wanted, QSize size, const QList<QRect>& screens);

/// Puts a window in its place and keeps it on the screens as a whole while these change. What the
/// user moves is remembered; what the desktop moves when screens change is not.
class Placement final : public QObject {
 public:
  /// The settings may be null. The session's second card and those after it lie beside the place of
  /// the first, and nothing is remembered of them.
  Placement(QWindow& window, Settings* settings, int cardNumber);
  ~Placement() override;

  void place();
  void moved();  ///< the window has moved; remembered a moment later
  void save();   ///< what is yet to be remembered

 private:
  void watch(QScreen* screen);
  void screensChanging();

  QWindow& window_;
  Settings* const settings_;
  const int cardNumber_;
  std::optional<QPoint> placed_;  // where it was put last, until the user moves it
  bool hasMoved_ = false;         // since the place was remembered
  QTimer saveTimer_;
  QTimer changeTimer_;  // runs while screens change
};

}  // namespace desktop
