#include "desktop/player/attention.h"

#include <algorithm>
#include <utility>

namespace desktop {

void PlayerAttention::asked(Time now) {
  if (!unanswered_) unanswered_ = now;
  lastAsked_ = now;
  nextQuestion_ = now + (isSilent() ? distance_ : repeatAfter);
  if (!isSilent()) return;
  distance_ = std::min(distance_ * 2, lastDistance);
}

void PlayerAttention::answered(Time now) {
  const auto question = std::exchange(unanswered_, std::nullopt);
  state_ = question && now - *question <= promptAnswer ? State::prompt : State::slow;
  distance_ = firstDistance;
  nextQuestion_.reset();
  if (!isPrompt()) nextQuestion_ = now + firstDistance;
}

void PlayerAttention::refused(Time now) {
  unanswered_.reset();
  if (std::exchange(state_, State::silent) != State::silent) nextQuestion_ = now + firstDistance;
}

void PlayerAttention::gaveUpWaiting() {
  if (isPrompt()) state_ = State::slow;
}

bool PlayerAttention::heard(Time now) {
  switch (state_) {
    case State::prompt:
      return false;  // asked when somebody wants to know
    case State::slow:
      // Players keep their order: an answer that comes after a signal is at least as new.
      return !unanswered_;
    case State::silent:
      distance_ = firstDistance;
      return !lastAsked_ || now - *lastAsked_ > promptAnswer;
  }
  return false;
}

PlayerAttention::Due PlayerAttention::due(Time now) {
  if (!isSilent() && unanswered_ && now >= *unanswered_ + silenceAfter) {
    state_ = State::silent;
    distance_ = firstDistance;
    nextQuestion_ = now;
    return Due::silence;
  }
  if (!nextQuestion_ || now < *nextQuestion_) return Due::nothing;
  nextQuestion_.reset();
  return Due::question;
}

std::optional<PlayerAttention::Time> PlayerAttention::dueTime() const {
  if (isSilent() || !unanswered_) return nextQuestion_;
  const Time silence = *unanswered_ + silenceAfter;
  return nextQuestion_ ? std::min(*nextQuestion_, silence) : silence;
}

}  // namespace desktop
