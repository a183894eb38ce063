#include "tests/support/simulated_player.h"

#include <array>
#include <charconv>

namespace tests {

using platform::ScriptingRequest;
using platform::textFromCode;
using Kind = ScriptingRequest::Kind;

namespace {

std::string text(const platform::Value& value) {
  if (const auto flag = value.as<bool>()) return *flag ? "true" : "false";
  const auto number = value.as<platform::Number>();
  if (!number) return value.as<std::string>().value_or("?");
  std::array<char, 32> characters{};
  const auto end = std::to_chars(characters.begin(), characters.end(), number->doubleValue()).ptr;
  return {characters.begin(), end};
}

std::string text(const ScriptingRequest& request) {
  static constexpr const char* verbs[] = {"",      "set ",    "count ",  "resolve ",
                                          "make ", "remove ", "command "};
  std::string path;
  for (const auto& step : request.path) {
    path += (path.empty() ? "" : ".") + textFromCode(step.code);
    if (step.index) path += '[' + std::to_string(*step.index) + ']';
  }
  if (path.starts_with("pTrk.")) path.erase(0, 5);
  std::string result = verbs[static_cast<int>(request.kind)] + path;
  if (request.kind == Kind::set) result += ' ' + text(request.value);
  if (request.kind != Kind::command) return result;
  return result + (path.empty() ? "" : " ") + textFromCode(request.eventClass) + '/' +
         textFromCode(request.eventIdentifier);
}

}  // namespace

std::optional<platform::ScriptingReply> SimulatedPlayer::send(const ScriptingRequest& request) {
  if (request.bundleIdentifier != platform::player::bundleIdentifier) return std::nullopt;
  log_ += (requestCount_++ == 0 ? "" : " ") + text(request);
  if (const auto hook = requestHook_) hook(request);
  if (silent_ || (refusesWrites_ && request.kind == Kind::set)) return std::nullopt;
  const bool asks = request.kind != Kind::set && request.kind != Kind::command;
  const auto reply =
      asks && !request.path.empty() ? replies_.find(request.path.back().code) : replies_.end();
  return reply != replies_.end() ? reply->second : DemoPlayer::send(request);
}

}  // namespace tests
