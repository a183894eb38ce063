#include "desktop/player/position_clock.h"

#include <algorithm>
#include <cmath>

namespace desktop {

double PositionClock::calculated(Time now) const {
  if (!since_) return 0;
  const double position = position_ + rate_ * std::chrono::duration<double>(now - *since_).count();
  return end_ > 0 ? std::min(position, std::max(end_, position_)) : position;
}

void PositionClock::told(double position, Time now) {
  if (settledAt_ && std::abs(position - calculated(now)) > agreement) {
    jumps_ = jumps_ || hasAgreed_;
    settledAt_.reset();
  }
  if (!settledAt_) settledAt_ = now;
  hasAgreed_ = now - *settledAt_ >= shortestTest;
  position_ = position;
  since_ = now;
  toldAt_ = now;
  answeredAt_.reset();
}

void PositionClock::run(double rate, double end, Time now) {
  if (rate == rate_ && end == end_) return;
  position_ = calculated(now);
  if (since_) since_ = now;
  rate_ = rate;
  end_ = end;
  answeredAt_.reset();
}

void PositionClock::unsettle() {
  settledAt_.reset();
  hasAgreed_ = false;
}

double PositionClock::at(Time now) {
  if (!answeredAt_ || now - *answeredAt_ >= moment) {
    answeredAt_ = now;
    answer_ = calculated(now);
  }
  return answer_;
}

bool PositionClock::isDoubtful(Time now) const {
  if (!settledAt_) return true;
  return (jumps_ || !hasAgreed_) && now - toldAt_ >= moment;
}

}  // namespace desktop
