#include "tests/support/scripted.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace tests {

platform::ObjectArray ScriptedWorkspace::runningApplications(const std::string& bundleIdentifier) {
  auto instances = player_.runningApplications(bundleIdentifier);
  if (listsTerminatedInstance) {
    instances.insert(instances.begin(),
                     platform::make<platform::NSRunningApplication>(bundleIdentifier, true));
  }
  return instances;
}

std::optional<std::string> ScriptedWorkspace::applicationPath(const std::string& bundleIdentifier) {
  const auto found = installed.find(bundleIdentifier);
  return found != installed.end() ? std::optional(found->second) : std::nullopt;
}

std::shared_ptr<platform::NSImage> ScriptedWorkspace::icon(const std::string& path) {
  const auto found = icons.find(path);
  return found != icons.end() ? found->second : nullptr;
}

void ScriptedWorkspace::launchApplication(const std::string& bundleIdentifier) {
  asked.push_back("launch " + bundleIdentifier);
}

void ScriptedWorkspace::openURL(const platform::URL& url) {
  asked.push_back("open " + url.absoluteString());
}

namespace {

class ScriptedTransfer final : public platform::HTTPTransfer {
 public:
  explicit ScriptedTransfer(std::shared_ptr<ScriptedHTTP::Exchange> exchange)
      : exchange_(std::move(exchange)) {}
  void cancel() override { exchange_->cancelled = true; }

 private:
  std::shared_ptr<ScriptedHTTP::Exchange> exchange_;
};

}  // namespace

std::shared_ptr<platform::HTTPTransfer> ScriptedHTTP::start(platform::HTTPRequest request,
                                                            Completion completion) {
  auto exchange = std::make_shared<Exchange>();
  exchange->request = std::move(request);
  exchange->completion = std::move(completion);
  exchanges_.push_back(exchange);
  return std::make_shared<ScriptedTransfer>(std::move(exchange));
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

void ManualQueue::runAll() {
  while (!tasks_.empty()) {
    const auto task = std::move(tasks_.front());
    tasks_.pop_front();
    task();
  }
}

}  // namespace tests
