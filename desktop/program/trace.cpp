#include "desktop/program/trace.h"

#include <chrono>
#include <iostream>
#include <utility>

namespace desktop {

Trace::Trace(CardSurface& surface) {
  if (!qEnvironmentVariableIsSet("VIRELUNE_TRACE")) return;
  surface.setPaintObserver([isFirst = true](const QRegion&) mutable {
    if (!std::exchange(isFirst, false)) return;
    const auto now = std::chrono::steady_clock::now().time_since_epoch();
    std::cerr << "first frame at " << std::chrono::nanoseconds(now).count() << std::endl;
  });
  beat_.setTimerType(Qt::PreciseTimer);
  connect(&beat_, &QTimer::timeout, this, [this] {
    constexpr qint64 longest = 10;  // milliseconds
    const qint64 late = sinceBeat_.restart() - beat_.interval();
    if (late > longest) std::cerr << "busy for " << late << " ms" << std::endl;
  });
  sinceBeat_.start();
  constexpr int interval = 2;  // milliseconds
  beat_.start(interval);
}

}  // namespace desktop
