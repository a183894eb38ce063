#include "desktop/program/network.h"

#include <utility>

#include "desktop/files/module.h"

namespace desktop {

namespace {

/// A transfer that has failed before it began.
class NoTransfer final : public platform::HTTPTransfer {
 public:
  void cancel() override {}
};

}  // namespace

Network::Network(std::string additionalCertificates)
    : certificates_(std::move(additionalCertificates)) {}

std::shared_ptr<platform::HTTPTransport> Network::transport() {
  const std::lock_guard lock(mutex_);
  if (isStopped_ || transport_) return transport_;
  auto* make = reinterpret_cast<MakeTransport*>(functionOfModule("network", makeTransportName));
  if (make != nullptr) transport_.reset(make(certificates_));
  isStopped_ = make == nullptr;
  return transport_;
}

void Network::stop() {
  std::shared_ptr<platform::HTTPTransport> transport;
  const std::lock_guard lock(mutex_);
  isStopped_ = true;
  transport.swap(transport_);
}

std::shared_ptr<platform::HTTPTransfer> Network::start(platform::HTTPRequest request,
                                                       Completion completion) {
  if (const auto carrier = transport()) {
    return carrier->start(std::move(request), std::move(completion));
  }
  completion({.body = std::nullopt, .status = 0, .error = "there is no network"});
  return std::make_shared<NoTransfer>();
}

}  // namespace desktop
