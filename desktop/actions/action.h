// What a user can do, each once, for every way of doing it.
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace desktop {

/// Why an action did not happen.
struct ActionProblem {
  enum class Kind {
    badValue,   ///< the argument makes no sense for it
    impossible  ///< there is nothing to do it with, or nothing came of it
  };
  Kind kind = Kind::impossible;
  std::string text;  ///< for people: part of one line, without a full stop
};

/// Something that can be done. Doing it answers none when it is done.
struct Action {
  using Outcome = std::optional<ActionProblem>;

  std::string name;      ///< "play-pause"
  std::string labelKey;  ///< of its label in the string table
  std::function<bool()> isPossible;
  std::function<bool()> isOn;  ///< null for what is no switch
  std::function<Outcome(std::string_view argument)> perform;
};

/// The actions of a program, in the order in which they are shown.
class Actions {
 public:
  void add(Action action) { actions_.push_back(std::move(action)); }
  const std::vector<Action>& all() const { return actions_; }
  /// Null when there is none of that name.
  const Action* find(std::string_view name) const;
  /// A name that is unknown is a bad value; what is not possible now is not tried.
  Action::Outcome perform(std::string_view name, std::string_view argument = {}) const;

 private:
  std::vector<Action> actions_;
};

/// For an action that takes no argument: does it, unless it is given one all the same.
std::function<Action::Outcome(std::string_view)> withoutArgument(std::function<bool()> act);

}  // namespace desktop
