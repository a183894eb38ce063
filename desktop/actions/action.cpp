#include "desktop/actions/action.h"

#include <algorithm>
#include <utility>

namespace desktop {

const Action* Actions::find(std::string_view name) const {
  const auto found = std::find_if(actions_.begin(), actions_.end(),
                                  [name](const Action& action) { return action.name == name; });
  return found != actions_.end() ? &*found : nullptr;
}

Action::Outcome Actions::perform(std::string_view name, std::string_view argument) const {
  const Action* action = find(name);
  if (action == nullptr) {
    return ActionProblem{ActionProblem::Kind::badValue,
                         "there is no action \"" + std::string(name.substr(0, 40)) + '"'};
  }
  if (!action->isPossible()) {
    return ActionProblem{.text = "there is nothing to do that with: " + action->name};
  }
  return action->perform(argument);
}

std::function<Action::Outcome(std::string_view)> withoutArgument(std::function<bool()> act) {
  return [act = std::move(act)](std::string_view argument) -> Action::Outcome {
    if (!argument.empty()) return ActionProblem{ActionProblem::Kind::badValue, "takes no value"};
    if (!act()) return ActionProblem{.text = "nothing came of it"};
    return std::nullopt;
  };
}

}  // namespace desktop
