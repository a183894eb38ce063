// HTTP transfers behind a narrow interface.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/foundation/data.h"
#include "platform/foundation/date.h"
#include "platform/foundation/url.h"

namespace platform {

/// A GET request over http or https.
struct HTTPRequest {
  std::string url;
  std::vector<std::pair<std::string, std::string>> headers;
  TimeInterval timeout = 60;                    ///< seconds for the whole transfer
  std::size_t maximumLength = 8 * 1024 * 1024;  ///< bytes; a longer body is a transport error
};

/// How a transfer ended: with the body (whatever the status), or with a transport error.
struct HTTPResult {
  std::optional<Data> body;  ///< none after a transport error or a cancellation
  int status = 0;            ///< 0 without a response
  std::string error;         ///< for diagnosis only
};

/// A transfer in progress. Letting go of it does not end it.
class HTTPTransfer {
 public:
  virtual ~HTTPTransfer() = default;
  /// Ends the transfer; its completion still runs, without a body. Any thread.
  virtual void cancel() = 0;
};

/// Carries out transfers. Any thread.
class HTTPTransport {
 public:
  using Completion = std::function<void(HTTPResult)>;
  virtual ~HTTPTransport() = default;
  /// Starts a transfer; the completion runs exactly once, on the transport's own thread, or
  /// before this returns.
  virtual std::shared_ptr<HTTPTransfer> start(HTTPRequest request, Completion completion) = 0;
};

}  // namespace platform
