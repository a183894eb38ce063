// What the program says about itself to who measures it: see bench/run.
#pragma once

#include <QtCore/QElapsedTimer>
#include <QtCore/QObject>
#include <QtCore/QTimer>

#include "desktop/window/card_surface.h"

namespace desktop {

/// While VIRELUNE_TRACE is set, it tells on the standard error when the first frame was painted (on
/// the steady clock, in nanoseconds), and each time that the main thread did not come round for
/// more than ten milliseconds.
class Trace final : public QObject {
 public:
  explicit Trace(CardSurface& surface);

 private:
  QTimer beat_;
  QElapsedTimer sinceBeat_;
};

}  // namespace desktop
