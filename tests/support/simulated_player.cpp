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
  static constexpr const char* verbs[] = {"get",  "set",    "count",  "resolve",
                                          "make", "remove", "command"};
  std::string result = verbs[static_cast<int>(request.kind)];
  const char* separator = " ";
  for (const auto& step : request.path) {
    result += separator + textFromCode(step.code);
    if (step.index) result += '[' + std::to_string(*step.index) + ']';
    separator = ".";
  }
  if (request.kind == Kind::set) result += ' ' + text(request.value);
  if (request.kind == Kind::command) {
    result += ' ' + textFromCode(request.eventClass) + '/' + textFromCode(request.eventIdentifier);
  }
  return result;
}

}  // namespace

std::string SimulatedPlayer::asked() const {
  std::string all;
  for (std::string entry : log_) {
    for (const std::string usual : {"get ", "pTrk."}) {
      const auto at = entry.find(usual);
      if (at != std::string::npos) entry.erase(at, usual.size());
    }
    all += (all.empty() ? "" : " ") + entry;
  }
  return all;
}

std::optional<platform::ScriptingReply> SimulatedPlayer::send(const ScriptingRequest& request) {
  if (request.bundleIdentifier != platform::player::bundleIdentifier) return std::nullopt;
  log_.push_back(text(request));
  if (const auto hook = requestHook_) hook(request);
  if (silent_ || (refusesWrites_ && request.kind == Kind::set)) return std::nullopt;
  const bool asks = request.kind != Kind::set && request.kind != Kind::command;
  const auto reply =
      asks && !request.path.empty() ? replies_.find(request.path.back().code) : replies_.end();
  return reply != replies_.end() ? reply->second : DemoPlayer::send(request);
}

}  // namespace tests
