#include "platform/url_session.h"

#include "tests/support/widget_fixture.h"

using platform::NSMutableURLRequest;
using platform::NSURLSession;
using platform::URL;

namespace {

class URLSessions : public tests::WidgetFixture {
 protected:
  /// Notes how each transfer ended: its body, or "error".
  platform::NSURLSessionDataTask::CompletionHandler note() {
    return
        [this](const std::optional<platform::Data>& data, const std::optional<std::string>& error) {
          EXPECT_NE(data.has_value(), error.has_value());
          ended.emplace_back(data ? data->view() : "error");
        };
  }
  std::shared_ptr<platform::NSURLSessionDataTask> task() {
    return NSURLSession::sharedSession()->dataTaskWithURL_completionHandler(
        *URL::fromText("http://host.example/a"), note());
  }
  std::vector<std::string> ended;
};

}  // namespace

TEST_F(URLSessions, ATaskTransfersOnceAndGoesOnWhenNobodyHoldsIt) {
  auto resumed = task();
  EXPECT_EQ(http.count(), 0U) << "not before it is resumed";
  resumed->resume();
  resumed->resume();
  resumed.reset();
  EXPECT_EQ(http.count(), 1U);
  http.answer(0, "body", 404);
  task()->resume();
  http.answer(1, "");
  task()->resume();
  http.fail(2);
  EXPECT_EQ(ended, (std::vector<std::string>{"body", "", "error"}));
}

TEST_F(URLSessions, ACancelledTaskCompletesWithoutBytesOrWasNeverStarted) {
  const auto running = task();
  running->resume();
  running->cancel();
  EXPECT_TRUE(http.at(0).cancelled);
  http.answer(0, "too late");
  EXPECT_EQ(ended, std::vector<std::string>{"error"});
  running->cancel();
  running->resume();

  const auto waiting = task();
  waiting->cancel();
  waiting->resume();
  EXPECT_EQ(http.count(), 1U);
  EXPECT_EQ(ended.size(), 1U);
}

TEST_F(URLSessions, ATaskLetsGoOfItsHandlerOnceItHasRun) {
  auto held = std::make_shared<int>();
  const std::weak_ptr<int> watched = held;
  const auto session = NSURLSession::sharedSession();
  for (const bool start : {true, false}) {
    const auto task = session->dataTaskWithURL_completionHandler(
        *URL::fromText("http://host.example/a"), [held, session](auto&&...) {});
    if (start) task->resume();
    if (start) http.answer(0, "body");
    if (!start) task->cancel();
    EXPECT_EQ(held.use_count(), 1);
  }
  held.reset();
  EXPECT_TRUE(watched.expired());
}

TEST_F(URLSessions, RequestsCarryHeadersTimeoutAndCachePolicy) {
  NSMutableURLRequest request(*URL::fromText("https://host.example/b?c"));
  request.setValue_forHTTPHeaderField("bytes=0-1", "Range");
  request.setValue_forHTTPHeaderField("bytes=0-9", "range");
  request.setTimeoutInterval(3);
  EXPECT_EQ(request.valueForHTTPHeaderField("RANGE"), "bytes=0-9");
  EXPECT_EQ(request.valueForHTTPHeaderField("Accept"), std::nullopt);
  const auto session = NSURLSession::sharedSession();
  session->dataTaskWithRequest_completionHandler(request, note())->resume();
  EXPECT_EQ(http.at(0).request.url, "https://host.example/b?c");
  EXPECT_EQ(http.at(0).request.timeout, 3);
  EXPECT_EQ(http.at(0).request.headers.size(), 1U);
  request.setCachePolicy(platform::NSURLRequestReloadIgnoringLocalAndRemoteCacheData);
  session->dataTaskWithRequest_completionHandler(request, note())->resume();
  EXPECT_EQ(http.at(1).request.headers.size(), 3U);
}

TEST_F(URLSessions, AFinishedSessionEndsItsTasksAndMakesNoMore) {
  class Delegate : public platform::NSURLSessionDelegate {};
  const auto delegate = std::make_shared<Delegate>();
  const auto session = NSURLSession::sessionWithConfiguration_delegate_delegateQueue(
      platform::NSURLSessionConfiguration::defaultSessionConfiguration(), delegate, nullptr);
  EXPECT_EQ(session->delegate(), delegate);
  const auto url = *URL::fromText("http://host.example/a");
  session->dataTaskWithURL_completionHandler(url, note())->resume();
  session->finishTasksAndInvalidate();
  EXPECT_EQ(session->delegate(), nullptr);
  EXPECT_EQ(session->dataTaskWithURL_completionHandler(url, note()), nullptr);
  http.answer(0, "body");
  EXPECT_EQ(ended, std::vector<std::string>{"body"});

  platform_.http = nullptr;
  EXPECT_EQ(NSURLSession::sharedSession(), nullptr) << "there is no network";
}
