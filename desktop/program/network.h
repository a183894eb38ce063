// Transfers through the network module, which is loaded for the first of them.
#pragma once

#include <memory>
#include <mutex>
#include <string>

#include "platform/network/http.h"

namespace desktop {

/// What curl brings is a third of the program's libraries, and most hours fetch nothing. Any
/// thread.
class Network final : public platform::HTTPTransport {
 public:
  /// Certificates in PEM (RFC 7468) are trusted besides those of the system.
  explicit Network(std::string additionalCertificates = {});

  /// Ends all transfers, whose completions have run when this returns. Transfers that are started
  /// afterwards fail at once, as all do when the module cannot be loaded.
  void stop();

  std::shared_ptr<platform::HTTPTransfer> start(platform::HTTPRequest request,
                                                Completion completion) override;

 private:
  std::shared_ptr<platform::HTTPTransport> transport();

  const std::string certificates_;
  std::mutex mutex_;
  bool isStopped_ = false;
  std::shared_ptr<platform::HTTPTransport> transport_;
};

/// The function that the module exports under this name: what it answers is the caller's, and takes
/// its transfers along when it is destroyed.
using MakeTransport = platform::HTTPTransport*(const std::string& additionalCertificates);
inline constexpr const char* makeTransportName = "virelune_http_transport";

}  // namespace desktop
