#include "radio/url_connection.h"

#include "tests/support/instant_http.h"
#include "tests/support/widget_fixture.h"

namespace virelune {
namespace {

using platform::Data;
using platform::NSURLRequest;
using platform::URL;

class URLConnection : public tests::WidgetFixture {
 protected:
  URLConnection() { platform_.http = &network; }

  tests::InstantHTTP network;
  const std::optional<NSURLRequest> request{*URL::fromText("https://example.org/")};
};

TEST_F(URLConnection, ABodyCountsWhateverTheStatusAndEverythingElseIsNone) {
  network.status = 404;
  network.replies = {"<html>not found</html>", "", std::nullopt};
  const auto connection = platform::make<VLURLConnection>();
  EXPECT_EQ(connection->send(request), Data::fromText("<html>not found</html>"));
  EXPECT_EQ(connection->send(request), std::nullopt);
  EXPECT_EQ(connection->send(request), std::nullopt);
  EXPECT_EQ(connection->contentData(), std::nullopt) << "the first body is forgotten";
  EXPECT_EQ(vl_sendSynchronousRequest(std::nullopt), std::nullopt);
  EXPECT_EQ(network.requests.size(), 3U);
  platform_.http = nullptr;
  EXPECT_EQ(vl_sendSynchronousRequest(request), std::nullopt);
}

TEST_F(URLConnection, CallWaitsForAnAnswerFromAnotherThread) {
  tests::ThreadedHTTP threaded([](const std::string&) { return Data::fromText("late"); });
  platform_.http = &threaded;
  EXPECT_EQ(vl_sendSynchronousRequest(request), Data::fromText("late"));
}

}  // namespace
}  // namespace virelune
