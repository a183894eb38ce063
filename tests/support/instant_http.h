// Networks that answer by themselves.
#pragma once

#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <thread>
#include <vector>

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

/// Completes each request, also a cancelled one, on a thread of its own, in their order.
class ThreadedHTTP final : public platform::HTTPTransport {
 public:
  using Answer = std::function<platform::Data(const std::string& url)>;
  explicit ThreadedHTTP(Answer answer) : answer_(std::move(answer)) {}
  ~ThreadedHTTP() override {
    // An answer may have brought on the next request.
    while (lastThread().joinable()) continue;
  }

  std::shared_ptr<platform::HTTPTransfer> start(platform::HTTPRequest request,
                                                Completion completion) override {
    const std::lock_guard lock(mutex_);
    last_ = std::jthread([before = std::move(last_), body = answer_(request.url),
                          completion = std::move(completion)]() mutable {
      before = {};  // which waits for its end
      completion({.body = body, .status = 200, .error = {}});
    });
    return std::make_shared<DeafTransfer>();
  }

 private:
  std::jthread lastThread() {
    const std::lock_guard lock(mutex_);
    return std::move(last_);
  }

  const Answer answer_;
  std::mutex mutex_;
  std::jthread last_;  // guarded by mutex_
};

}  // namespace tests
