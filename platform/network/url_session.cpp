#include "platform/network/url_session.h"

#include "platform/foundation/text.h"
#include "platform/platform.h"

namespace platform {
namespace {

bool isSameField(const std::string& a, const std::string& b) {
  return lowerCaseASCII(a) == lowerCaseASCII(b);
}

HTTPRequest transportRequest(const NSURLRequest& request) {
  HTTPRequest result;
  result.url = request.url().absoluteString();
  result.headers = request.allHTTPHeaderFields();
  result.timeout = request.timeoutInterval();
  if (request.cachePolicy() == NSURLRequestReloadIgnoringLocalAndRemoteCacheData) {
    result.headers.emplace_back("Cache-Control", "no-cache");
    result.headers.emplace_back("Pragma", "no-cache");
  }
  return result;
}

}  // namespace

void NSMutableURLRequest::setValue_forHTTPHeaderField(std::string value, const std::string& field) {
  std::erase_if(headerFields_, [&](const auto& entry) { return isSameField(entry.first, field); });
  headerFields_.emplace_back(field, std::move(value));
}

NSURLSessionDataTask::NSURLSessionDataTask(std::shared_ptr<NSURLSession> session,
                                           HTTPTransport& transport, const NSURLRequest& request,
                                           CompletionHandler completionHandler)
    : session_(std::move(session)),
      transport_(transport),
      request_(transportRequest(request)),
      completionHandler_(std::move(completionHandler)) {}

void NSURLSessionDataTask::resume() {
  HTTPRequest request;
  CompletionHandler handler;
  {
    const std::lock_guard lock(mutex_);
    if (!completionHandler_) return;
    request = std::move(request_);
    handler = std::exchange(completionHandler_, nullptr);
  }
  // Started without the lock: the transfer may end before start() returns.
  auto transfer =
      transport_.start(std::move(request), [handler = std::move(handler)](HTTPResult result) {
        if (result.body) {
          handler(std::move(result.body), std::nullopt);
        } else {
          handler(std::nullopt, std::move(result.error));
        }
      });
  const std::lock_guard lock(mutex_);
  if (cancelled_) transfer->cancel();
  transfer_ = std::move(transfer);
}

void NSURLSessionDataTask::cancel() {
  std::shared_ptr<HTTPTransfer> transfer;
  CompletionHandler dropped;  // what it holds is let go of without the lock
  {
    const std::lock_guard lock(mutex_);
    if (std::exchange(cancelled_, true)) return;
    dropped.swap(completionHandler_);
    transfer = transfer_;
  }
  if (transfer != nullptr) transfer->cancel();
}

std::shared_ptr<NSURLSession> NSURLSession::sharedSession() {
  return sessionWithConfiguration_delegate_delegateQueue(
      NSURLSessionConfiguration::defaultSessionConfiguration(), {}, nullptr);
}

std::shared_ptr<NSURLSession> NSURLSession::sessionWithConfiguration_delegate_delegateQueue(
    const NSURLSessionConfiguration&, const std::weak_ptr<NSURLSessionDelegate>& delegate,
    std::nullptr_t) {
  HTTPTransport* transport = current().http;
  return transport != nullptr ? make<NSURLSession>(*transport, delegate) : nullptr;
}

std::shared_ptr<NSURLSessionDataTask> NSURLSession::dataTaskWithURL_completionHandler(
    const URL& url, NSURLSessionDataTask::CompletionHandler completionHandler) {
  return dataTaskWithRequest_completionHandler(NSURLRequest(url), std::move(completionHandler));
}

std::shared_ptr<NSURLSessionDataTask> NSURLSession::dataTaskWithRequest_completionHandler(
    const NSURLRequest& request, NSURLSessionDataTask::CompletionHandler completionHandler) {
  {
    const std::lock_guard lock(mutex_);
    if (finished_) return nullptr;
  }
  return make<NSURLSessionDataTask>(weakReference(this).lock(), transport_, request,
                                    std::move(completionHandler));
}

void NSURLSession::finishTasksAndInvalidate() {
  const std::lock_guard lock(mutex_);
  finished_ = true;
  delegate_.reset();
}

std::shared_ptr<NSURLSessionDelegate> NSURLSession::delegate() const {
  const std::lock_guard lock(mutex_);
  return delegate_.lock();
}

}  // namespace platform
