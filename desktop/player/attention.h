// Whether a player answers, and when it is to be asked again.
#pragma once

#include <chrono>
#include <optional>

namespace desktop {

/// Told of every question, answer and signal with its time, it decides how the player is to be
/// treated. Times count from any moment.
///
///   silent  what the player told does not hold; so at first, and once a question has stayed
///           without an answer for silenceAfter
///   prompt  the last answer came at once, so that the next one is worth waiting for
///   slow    the last answer took its time; questions go out, and what was told last holds
///           until the answer is there
///
/// A question may get lost, so it is repeated while there is no answer. A slow player is asked once
/// more after a while, so that it can show itself prompt. A silent one is asked again and again at
/// growing distances, and at once when it signals something.
class PlayerAttention {
 public:
  using Time = std::chrono::milliseconds;

  static constexpr Time promptAnswer{100};
  static constexpr Time repeatAfter{500};
  static constexpr Time silenceAfter{1500};
  static constexpr Time firstDistance{1000};
  static constexpr Time lastDistance{30'000};

  bool isPrompt() const { return state_ == State::prompt; }
  bool isSilent() const { return state_ == State::silent; }

  void asked(Time now);
  /// The player answered, to whichever question.
  void answered(Time now);
  /// The player answered that it has no answer.
  void refused(Time now);
  /// Nobody waits any longer for an answer to the last question; it may still come.
  void gaveUpWaiting();
  /// The player signalled something. True when it is to be asked at once, without waiting.
  bool heard(Time now);

  enum class Due { nothing, silence, question };
  /// What is due at this time: the player has fallen silent, or is to be asked again.
  Due due(Time now);
  /// When something will be due; none when nothing will.
  std::optional<Time> dueTime() const;

 private:
  enum class State { silent, prompt, slow };

  State state_ = State::silent;
  std::optional<Time> unanswered_;  ///< the first question since the last answer
  std::optional<Time> lastAsked_;
  std::optional<Time> nextQuestion_;
  Time distance_ = firstDistance;  ///< to the question after the next one
};

}  // namespace desktop
