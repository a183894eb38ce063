#include "tests/support/scripted.h"

#include <stdexcept>

namespace tests {

std::shared_ptr<platform::HTTPTransfer> ScriptedHTTP::start(platform::HTTPRequest request,
                                                            Completion completion) {
  auto exchange = std::make_shared<Exchange>();
  exchange->request = std::move(request);
  exchange->completion = std::move(completion);
  exchanges_.push_back(exchange);
  if (!replies.empty()) {
    const auto reply = std::move(replies.front());
    replies.pop_front();
    reply ? answer(lastIndex(), *reply, replyStatus) : fail(lastIndex());
  }
  return exchange;
}

void ScriptedHTTP::complete(std::size_t index, platform::HTTPResult result) {
  const auto exchange = exchanges_.at(index);
  if (std::exchange(exchange->completed, true)) throw std::logic_error("answered twice");
  if (exchange->cancelled) result = {.body = std::nullopt, .status = 0, .error = "cancelled"};
  const auto completion = std::exchange(exchange->completion, nullptr);
  completion(std::move(result));
}

void ScriptedHTTP::answer(std::size_t index, platform::Data body, int status) {
  complete(index, {.body = std::move(body), .status = status, .error = {}});
}

void ScriptedHTTP::answer(std::size_t index, const std::string& body, int status) {
  answer(index, platform::Data::fromText(body), status);
}

void ScriptedHTTP::fail(std::size_t index) {
  complete(index, {.body = std::nullopt, .status = 0, .error = "connection lost"});
}

std::size_t ScriptedHTTP::inFlight() const {
  return static_cast<std::size_t>(std::count_if(
      exchanges_.begin(), exchanges_.end(),
      [](const auto& exchange) { return !exchange->completed && !exchange->cancelled; }));
}

}  // namespace tests
