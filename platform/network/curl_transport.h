// HTTP transfers with libcurl.
#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "platform/network/http.h"

namespace platform {

/// Carries out any number of transfers side by side on one thread of its own. Speaks http and
/// https only, follows at most ten redirects and only to those, verifies certificates, keeps no
/// cache and no cookies, and honours the proxy variables of the environment except for this
/// machine itself. Library and thread start with the first transfer, so that a program which
/// needs none starts faster.
///
/// A transfer ends with a transport error when its time is up, when its body grows beyond the
/// request's bound, or when its headers grow beyond 256 KiB.
///
/// Destroying the transport stops it. A completion must not destroy or stop the transport.
class CurlTransport final : public HTTPTransport {
 public:
  /// Certificates in PEM (RFC 7468) are trusted besides those of the system.
  explicit CurlTransport(const std::string& additionalCertificates = {});
  ~CurlTransport() override;
  CurlTransport(const CurlTransport&) = delete;
  CurlTransport& operator=(const CurlTransport&) = delete;

  /// Ends the transfers under way; their completions have run, without bytes, when it returns.
  /// Transfers that are started afterwards fail at once, on the thread that starts them.
  void stop();

  std::shared_ptr<HTTPTransfer> start(HTTPRequest request, Completion completion) override;

 private:
  class Engine;
  class Transfer;
  std::shared_ptr<Engine> engine();

  const std::string additionalCertificates_;
  std::mutex mutex_;
  std::shared_ptr<Engine> engine_;  // guarded by mutex_; null before the first transfer
  bool isStopped_ = false;          // guarded by mutex_
};

}  // namespace platform
