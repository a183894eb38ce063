#include "radio/url_connection.h"

#include <thread>

#include "tests/support/widget_fixture.h"

namespace virelune {
namespace {

using platform::Data;
using platform::NSURLRequest;
using platform::URL;

using URLConnection = tests::WidgetFixture;

TEST_F(URLConnection, ABodyCountsWhateverTheStatusAndEverythingElseIsNone) {
  http.replyStatus = 404;
  http.replies = {"<html>not found</html>", "", std::nullopt};
  const std::optional<NSURLRequest> request{*URL::fromText("https://example.org/")};
  const auto connection = platform::make<VLURLConnection>();
  EXPECT_EQ(connection->send(request), Data::fromText("<html>not found</html>"));
  EXPECT_EQ(connection->send(request), std::nullopt);
  EXPECT_EQ(connection->send(request), std::nullopt);
  EXPECT_EQ(connection->contentData(), std::nullopt) << "the first body is forgotten";
  EXPECT_EQ(vl_sendSynchronousRequest(std::nullopt), std::nullopt);
  struct : platform::HTTPTransport, platform::HTTPTransfer {
    std::shared_ptr<platform::HTTPTransfer> start(platform::HTTPRequest, Completion done) override {
      thread = std::jthread(
          [done] { done({.body = Data::fromText("late"), .status = 200, .error = {}}); });
      return {std::shared_ptr<void>(), this};
    }
    void cancel() override {}
    std::jthread thread;
  } late;
  platform_.http = &late;
  EXPECT_EQ(vl_sendSynchronousRequest(request), Data::fromText("late")) << "of another thread";
  platform_.http = nullptr;
  EXPECT_EQ(vl_sendSynchronousRequest(request), std::nullopt);
}

}  // namespace
}  // namespace virelune
