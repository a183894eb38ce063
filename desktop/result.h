// How an operation says why it failed.
#pragma once

#include <string>
#include <utility>
#include <variant>

namespace desktop {

/// Why something could not be done, for people: part of one line, without a full stop.
struct Problem {
  std::string text;
};

/// A value, or why there is none; of an operation without a value, true when it is done.
template <class T = std::monostate>
class Result {
 public:
  Result() = default;
  Result(T value) : outcome_(std::move(value)) {}
  Result(Problem problem) : outcome_(std::move(problem)) {}

  explicit operator bool() const { return std::holds_alternative<T>(outcome_); }
  const T& operator*() const { return *std::get_if<T>(&outcome_); }
  const T* operator->() const { return std::get_if<T>(&outcome_); }
  const Problem& problem() const { return *std::get_if<Problem>(&outcome_); }

 private:
  std::variant<T, Problem> outcome_;
};

}  // namespace desktop
