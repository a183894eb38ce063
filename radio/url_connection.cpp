#include "radio/url_connection.h"

#include <future>
#include <string>
#include <utility>

using platform::Data;
using platform::NSURLRequest;
using platform::NSURLSession;
using platform::NSURLSessionConfiguration;

namespace virelune {
namespace {

std::optional<Data> unlessEmpty(std::optional<Data> data) {
  return data && !data->isEmpty() ? std::move(data) : std::nullopt;
}

}  // namespace

std::optional<Data> VLURLConnection::sendSynchronousRequest(
    const std::optional<NSURLRequest>& request) {
  return platform::make<VLURLConnection>()->send(request);
}

std::optional<Data> VLURLConnection::send(const std::optional<NSURLRequest>& request) {
  setContentData(std::nullopt);
  if (!request) return std::nullopt;
  const auto session = NSURLSession::sessionWithConfiguration_delegate_delegateQueue(
      NSURLSessionConfiguration::defaultSessionConfiguration(), {}, nullptr);
  if (session == nullptr) return std::nullopt;

  // The handler shares the signal: it may still be leaving it when this thread goes on.
  const auto finished = std::make_shared<std::promise<void>>();
  const auto connection = platform::weakReference(this).lock();
  const auto task = session->dataTaskWithRequest_completionHandler(
      *request,
      [connection, finished](std::optional<Data> data, const std::optional<std::string>& error) {
        if (!error) connection->setContentData(std::move(data));
        finished->set_value();
      });
  if (task == nullptr) return std::nullopt;
  task->resume();
  finished->get_future().wait();
  session->finishTasksAndInvalidate();
  return unlessEmpty(contentData());
}

std::optional<Data> VLURLConnection::contentData() const {
  const std::lock_guard lock(mutex_);
  return contentData_;
}

void VLURLConnection::setContentData(std::optional<Data> data) {
  const std::lock_guard lock(mutex_);
  contentData_ = std::move(data);
}

std::optional<Data> vl_sendSynchronousRequest(const std::optional<NSURLRequest>& request) {
  return VLURLConnection::sendSynchronousRequest(request);
}

}  // namespace virelune
