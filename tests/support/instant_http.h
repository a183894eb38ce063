// Networks that answer by themselves.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/loop/dispatch.h"
#include "platform/network/http.h"

namespace tests {

/// A transfer that takes no notice of its cancellation.
struct DeafTransfer final : platform::HTTPTransfer {
  void cancel() override {}
};

/// Completes each request at once with the next of its replies; with a transport error when it
/// has none left or the reply is none. For code that waits for an answer.
class InstantHTTP final : public platform::HTTPTransport {
 public:
  std::shared_ptr<platform::HTTPTransfer> start(platform::HTTPRequest request,
                                                Completion completion) override {
    requests.push_back(std::move(request));
    platform::HTTPResult result;
    if (!replies.empty()) {
      if (replies.front()) result.body = platform::Data::fromText(*replies.front());
      result.status = status;
      replies.pop_front();
    }
    if (!result.body) result.error = "connection lost";
    completion(std::move(result));
    return std::make_shared<DeafTransfer>();
  }

  std::deque<std::optional<std::string>> replies;
  int status = 200;
  std::vector<platform::HTTPRequest> requests;
};

/// Completes each request, also a cancelled one, on a thread of its own.
class ThreadedHTTP final : public platform::HTTPTransport {
 public:
  using Answer = std::function<platform::Data(const std::string& url)>;
  explicit ThreadedHTTP(Answer answer) : answer_(std::move(answer)) {}
  std::shared_ptr<platform::HTTPTransfer> start(platform::HTTPRequest request,
                                                Completion completion) override {
    worker_.async([body = answer_(request.url), completion = std::move(completion)] {
      completion({.body = body, .status = 200, .error = {}});
    });
    return std::make_shared<DeafTransfer>();
  }

 private:
  const Answer answer_;
  platform::WorkerPool worker_{1};
};

}  // namespace tests
