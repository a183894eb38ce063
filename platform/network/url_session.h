// URL sessions, their data tasks and requests, on top of the platform's HTTP transport.
#pragma once

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/foundation/data.h"
#include "platform/foundation/date.h"
#include "platform/foundation/object.h"
#include "platform/foundation/url.h"
#include "platform/network/http.h"

namespace platform {

enum NSURLRequestCachePolicy {
  NSURLRequestUseProtocolCachePolicy = 0,
  /// Asks every cache on the way for a fresh copy (RFC 9111, Cache-Control: no-cache).
  NSURLRequestReloadIgnoringLocalAndRemoteCacheData = 4,
};

/// A GET request for an address. There is no local cache, whatever the policy.
class NSURLRequest {
 public:
  explicit NSURLRequest(URL url) : url_(std::move(url)) {}

  const URL& url() const { return url_; }
  NSURLRequestCachePolicy cachePolicy() const { return cachePolicy_; }
  TimeInterval timeoutInterval() const { return timeoutInterval_; }  ///< for the whole transfer
  const std::vector<std::pair<std::string, std::string>>& allHTTPHeaderFields() const {
    return headerFields_;
  }

 protected:
  URL url_;
  NSURLRequestCachePolicy cachePolicy_ = NSURLRequestUseProtocolCachePolicy;
  TimeInterval timeoutInterval_ = 60;
  std::vector<std::pair<std::string, std::string>> headerFields_;
};

/// A request under construction; it converts to a finished one by copying.
class NSMutableURLRequest : public NSURLRequest {
 public:
  using NSURLRequest::NSURLRequest;

  void setCachePolicy(NSURLRequestCachePolicy policy) { cachePolicy_ = policy; }
  void setTimeoutInterval(TimeInterval seconds) { timeoutInterval_ = seconds; }
  void setValue_forHTTPHeaderField(std::string value, const std::string& field);
};

/// What a session may tell its owner. The widget asks for nothing of it.
class NSURLSessionDelegate {
 public:
  virtual ~NSURLSessionDelegate() = default;
};

/// How a session transfers: no caches, no cookies, no stored credentials.
class NSURLSessionConfiguration {
 public:
  static NSURLSessionConfiguration defaultSessionConfiguration() { return {}; }
};

class NSURLSession;

/// One transfer of a session. Any thread.
class NSURLSessionDataTask : public NSObject {
 public:
  /// Runs exactly once for a task that was resumed, on the transport's thread: with the body,
  /// whatever the HTTP status, and no error; or with an error and no body after a transport
  /// error, a time-out or a cancellation. The error's text is for diagnosis only.
  using CompletionHandler =
      std::function<void(std::optional<Data> data, std::optional<std::string> error)>;

  NSURLSessionDataTask(std::shared_ptr<NSURLSession> session, HTTPTransport& transport,
                       const NSURLRequest& request, CompletionHandler completionHandler);

  /// Starts the transfer; a second time changes nothing. It goes on when nobody holds the task.
  void resume();

  /// Ends the transfer; its completion handler still runs. A task that was never resumed has
  /// nothing to complete and cannot be resumed any more.
  void cancel();

  const std::shared_ptr<NSURLSession>& session() const { return session_; }

 private:
  const std::shared_ptr<NSURLSession> session_;
  HTTPTransport& transport_;
  std::mutex mutex_;
  HTTPRequest request_;                     // guarded by mutex_, as the rest
  CompletionHandler completionHandler_;     // until the task is resumed or cancelled
  std::shared_ptr<HTTPTransfer> transfer_;  // once it was started
  bool cancelled_ = false;
};

/// Makes data tasks. Any thread.
class NSURLSession : public NSObject {
 public:
  /// The session for single transfers, without a delegate; null when there is no transport.
  static std::shared_ptr<NSURLSession> sharedSession();

  /// A session of its own; null when there is no transport. The delegate is not owned. There are
  /// no delegate queues: completion handlers run on the transport's thread.
  static std::shared_ptr<NSURLSession> sessionWithConfiguration_delegate_delegateQueue(
      const NSURLSessionConfiguration& configuration,
      const std::weak_ptr<NSURLSessionDelegate>& delegate, std::nullptr_t delegateQueue);

  NSURLSession(HTTPTransport& transport, std::weak_ptr<NSURLSessionDelegate> delegate)
      : transport_(transport), delegate_(std::move(delegate)) {}

  /// A task that is not yet started; null once the session has been finished.
  std::shared_ptr<NSURLSessionDataTask> dataTaskWithURL_completionHandler(
      const URL& url, NSURLSessionDataTask::CompletionHandler completionHandler);
  std::shared_ptr<NSURLSessionDataTask> dataTaskWithRequest_completionHandler(
      const NSURLRequest& request, NSURLSessionDataTask::CompletionHandler completionHandler);

  /// Lets the tasks made so far run to their end, makes no more and forgets the delegate.
  void finishTasksAndInvalidate();

  std::shared_ptr<NSURLSessionDelegate> delegate() const;

 private:
  HTTPTransport& transport_;
  mutable std::mutex mutex_;
  std::weak_ptr<NSURLSessionDelegate> delegate_;  // guarded by mutex_
  bool finished_ = false;                         // guarded by mutex_
};

}  // namespace platform
