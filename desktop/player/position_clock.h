// Where a player is between its own words: a position runs on by itself while it plays.
#pragma once

#include <chrono>
#include <optional>

namespace desktop {

/// Told of positions with the times of the answers, it says where the player is. MPRIS players tell
/// when they jump (Seeked), when they start and stop, and at which rate they play; in between, the
/// position goes with the clock. Not all keep to that, so a player is believed once an answer was
/// where the clock had it, until it speaks or is spoken to; one that is then found elsewhere
/// without a word (it waits for its network, or jumps in silence) is asked each time from then on.
/// Times count from any moment.
class PositionClock {
 public:
  using Time = std::chrono::milliseconds;

  /// An answer this close to where the clock is agrees with it, in seconds.
  static constexpr double agreement = 0.5;
  /// Answers over less time than this say nothing about the player's pace.
  static constexpr Time shortestTest{500};
  /// What is asked for within this time is asked for at once, and gets one answer.
  static constexpr Time moment{20};

  /// The player is at this position, in seconds.
  void told(double position, Time now);
  /// It plays at this rate from now on, 0 while it does not play, up to this position in seconds;
  /// 0 for an end that is not known.
  void run(double rate, double end, Time now);
  /// It spoke or was spoken to: it may be anywhere.
  void unsettle();
  /// Another player, or none.
  void reset() { *this = {}; }

  double at(Time now);  ///< seconds; 0 before anything was told
  /// Whether an answer of the player's own is better than at().
  bool isDoubtful(Time now) const;

 private:
  double calculated(Time now) const;

  double position_ = 0;
  double rate_ = 0;
  double end_ = 0;
  std::optional<Time> since_;       ///< when it was at that position; none before anything was told
  std::optional<Time> settledAt_;   ///< the first answer of those that agree; none after its word
  Time toldAt_{};                   ///< the last answer
  bool hasAgreed_ = false;          ///< they did for long enough
  bool jumps_ = false;              ///< it was elsewhere after that, once
  std::optional<Time> answeredAt_;  ///< when at() answered anew, with answer_
  double answer_ = 0;
};

}  // namespace desktop
