#include "platform/network/url_session.h"

#include "tests/support/widget_fixture.h"

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
    return NSURLSession::sharedSession()->dataTaskWithURL_completionHandler(url, note());
  }
  const URL url = *URL::fromText("http://host.example/a");
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
  const auto held = std::make_shared<int>();
  const auto session = NSURLSession::sharedSession();
  for (const bool start : {true, false}) {
    const auto task =
        session->dataTaskWithURL_completionHandler(url, [held, session](auto&&...) {});
    if (start) task->resume();
    if (start) http.answer(0, "body");
    if (!start) task->cancel();
    EXPECT_EQ(held.use_count(), 1);
  }
}
