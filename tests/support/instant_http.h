// A network that answers while it is asked.
#pragma once

#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "platform/http.h"

namespace tests {

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
    return std::make_shared<Transfer>();
  }

  std::deque<std::optional<std::string>> replies;
  int status = 200;
  std::vector<platform::HTTPRequest> requests;

 private:
  struct Transfer final : platform::HTTPTransfer {
    void cancel() override {}
  };
};

}  // namespace tests
