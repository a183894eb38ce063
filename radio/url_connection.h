// A transfer that the calling thread waits for.
#pragma once

#include <memory>
#include <mutex>
#include <optional>

#include "platform/foundation/data.h"
#include "platform/foundation/object.h"
#include "platform/network/url_session.h"

namespace virelune {

/// Performs one transfer at a time and blocks until it has ended; for worker threads. The request
/// is used as it is: its own time-out bounds the wait. Whatever the HTTP status, the answer is the
/// body; none without a request, after a transport error, and for an empty body.
class VLURLConnection : public platform::NSObject {
 public:
  /// Sends a request over a connection of its own.
  static std::optional<platform::Data> sendSynchronousRequest(
      const std::optional<platform::NSURLRequest>& request);

  /// Sends a request over this connection, which forgets its last body first.
  std::optional<platform::Data> send(const std::optional<platform::NSURLRequest>& request);

  /// The body of the last transfer that ended without a transport error. Any thread.
  std::optional<platform::Data> contentData() const;
  void setContentData(std::optional<platform::Data> data);

 private:
  mutable std::mutex mutex_;
  std::optional<platform::Data> contentData_;  // guarded by mutex_
};

/// The body of a request's reply; none when there is none. Blocks; for worker threads.
std::optional<platform::Data> vl_sendSynchronousRequest(
    const std::optional<platform::NSURLRequest>& request);

}  // namespace virelune
