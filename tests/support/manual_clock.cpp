#include "tests/support/manual_clock.h"

#include <algorithm>
#include <stdexcept>

namespace tests {

void ManualClock::settle() {
  constexpr int tooMany = 1000;
  for (int turn = 0; turn < tooMany; ++turn) {
    woken_ = false;
    runLoop_.runPass();
    const auto deadline = runLoop_.nextDeadline();
    if (!woken_ && (!deadline || *deadline > elapsed_)) return;
  }
  throw std::logic_error("the run loop never comes to rest");
}

void ManualClock::advance(platform::TimeInterval seconds) {
  settle();
  const double end = elapsed_ + seconds;
  while (true) {
    const auto deadline = runLoop_.nextDeadline();
    if (!deadline || *deadline > end) break;
    elapsed_ = std::max(elapsed_, *deadline);
    settle();
  }
  elapsed_ = std::max(elapsed_, end);
  settle();
}

}  // namespace tests
