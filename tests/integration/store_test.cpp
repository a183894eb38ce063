// The look-up of covers and of artists' pages, through the real transport, over TLS.
#include <gtest/gtest.h>
#include <httplib.h>

#include <atomic>
#include <mutex>

#include "controls/artwork_button.h"
#include "demo/demo_library.h"
#include "demo/demo_store.h"
#include "demo/loopback_certificate.h"
#include "demo/serving_thread.h"
#include "panels/link.h"
#include "platform/network/curl_transport.h"
#include "tests/integration/loopback_server.h"
#include "tests/support/widget_fixture.h"
#include "widget/constants.h"

using testing::ElementsAre;
using testing::IsEmpty;
using virelune::VLArtworkButton;
using virelune::VLLink;

namespace {

/// A search service over TLS that notes what it is asked, and serves covers.
class StoreServer {
 public:
  StoreServer() {
    server_.Get("/search", [this](const httplib::Request& request, httplib::Response& response) {
      note(request);
      response.set_content(reply, "text/javascript; charset=utf-8");
    });
    server_.Get("/cover/.*", [this](const httplib::Request& request, httplib::Response& response) {
      note(request);
      response.set_content("image:cover", "image/jpeg");
    });
    if (!thread_.start()) throw std::runtime_error("no server could be started");
  }

  std::string host() const { return thread_.host(); }
  std::string port() const { return host().substr(host().find(':')); }
  std::string certificate() const { return certificate_->pem(); }
  /// The request lines since they were last asked for.
  std::vector<std::string> requestLines() {
    const std::lock_guard lock(mutex_);
    return std::exchange(lines_, {});
  }

  std::string reply;  ///< to searches; changed only while nobody asks

 private:
  void note(const httplib::Request& request) {
    const std::lock_guard lock(mutex_);
    lines_.push_back(request.method + " " + request.target + " " + request.version);
  }

  const std::optional<demo::LoopbackCertificate> certificate_ = demo::LoopbackCertificate::make();
  httplib::SSLServer server_{certificate_->certificate(), certificate_->key()};
  std::mutex mutex_;
  std::vector<std::string> lines_;  // guarded by mutex_
  demo::ServingThread thread_{server_};
};

/// A number of results as a real service sends them, with every oddity, the wanted one last.
std::string results(int count, const std::string& wanted) {
  const std::string odd[] = {
      R"({"wrapperType":"track","kind":"song","artistName":"Foo","collectionName":null,)"
      R"("trackName":"Bar","trackTimeMillis":215000,"isStreamable":true,"artworkUrl100":null})",
      R"({"wrapperType":"artist","artistName":"Foo Fighters","artistLinkUrl":"https://no.example/",)"
      R"("collectionName":"Bar","amgArtistId":5723.5,"artworkUrl100":"https://no.example/1.jpg"})",
      R"({"collectionName":"Bar","artistName":["Foo"],"artistViewUrl":7,"artworkUrl100":{}})",
      R"({"artistName":"Foo\u200b","collectionName":"B\u00e1r","genres":[{"id":"14"},[[]],-1e3]})",
      R"(null)"};
  std::string text = "\n\n\n{\"resultCount\":" + std::to_string(count) + ",\"results\":[";
  for (int i = 1; i < count; ++i) text += odd[i % 5] + ",\n";
  return text + wanted + "]}\n\n";
}

/// The real transport, watched: when it is idle, all that a look-up asked for has completed.
class WatchedTransport final : public platform::HTTPTransport {
 public:
  explicit WatchedTransport(const std::string& certificate) { trust(certificate); }
  /// Trusts this certificate and none of those before.
  void trust(const std::string& certificate) { transport_.emplace(certificate); }
  std::shared_ptr<platform::HTTPTransfer> start(platform::HTTPRequest request,
                                                Completion completion) override {
    lastTimeout = std::exchange(request.timeout, longestTimeout);
    ++underWay_;
    return transport_->start(std::move(request), [this, completion = std::move(completion)](
                                                     platform::HTTPResult result) {
      completion(std::move(result));
      --underWay_;
      underWay_.notify_all();
    });
  }
  void waitUntilIdle() const {
    for (int left = underWay_; left != 0; left = underWay_) underWay_.wait(left);
  }

  std::atomic<double> lastTimeout = 0;  ///< seconds, of the last request
  double longestTimeout = 60;           ///< that requests are given

 private:
  std::atomic<int> underWay_ = 0;
  std::optional<platform::CurlTransport> transport_;
};

class Store : public tests::WidgetFixture {
 protected:
  Store() {
    platform_.http = &transport;
    ask(server.host());
  }

  void ask(const std::string& host) { bundle->setInfoDictionaryEntry("VLStoreSearchHost", host); }
  /// Shows something, looks a cover up and answers what is shown once the look-up has ended.
  std::shared_ptr<platform::NSImage> lookUp(const std::string& artist, const std::string& album) {
    const auto before = platform::make<tests::TestImage>("before", platform::NSSize{1, 1});
    const auto button = platform::make<VLArtworkButton>();
    button->setArtwork_forArtist_withAlbum_download(before, artist, album, true);
    transport.waitUntilIdle();
    EXPECT_EQ(button->contentURLSessionDataTask(), nullptr);
    clock.settle();
    return button->image();
  }

  StoreServer server;
  WatchedTransport transport{server.certificate()};
};

}  // namespace

TEST_F(Store, CoverIsFoundAndShownAmongAnyNumberOfResults) {
  for (const int count : {1, 50, 200}) {
    server.reply = results(count, R"({"wrapperType":"collection","artistName":"FOO","bar":null,)"
                                  R"("collectionName":"bar","artworkUrl100":"https:\/\/)" +
                                      server.host() + R"(/cover/1/100x100bb.jpg"})");
    EXPECT_EQ(tests::nameOf(lookUp("Foo", "Bar")), "cover") << count;
    EXPECT_THAT(server.requestLines(), ElementsAre("GET /search?term=Foo+Bar&entity=album HTTP/1.1",
                                                   "GET /cover/1/1000x1000bb.jpg HTTP/1.1"));
  }
}

TEST_F(Store, ArtistsPageOpensAsAStoreLinkAmongAnyNumberOfResults) {
  for (const int count : {1, 50, 200}) {
    server.reply =
        results(count, R"({"artistName":"BAR","artistLinkUrl":null,"artistType":"Artist",)"
                       R"("artistViewUrl":"https://music.example/bar/1?uo=4"})");
    EXPECT_TRUE(VLLink::openStoreForArtist("Bar"));
    EXPECT_THAT(workspaceBackend.asked,
                ElementsAre("open itms://music.example/bar/1?uo=4&at=4p8d27M"));
    workspaceBackend.asked.clear();
  }
}

TEST_F(Store, RequestLinesCarryEveryNameByteForByte) {
  const std::vector<std::pair<std::string, std::string>> names = {
      {"Foo  Bar", "Foo++Bar"},
      {"A & B + C = D", "A+&+B+++C+=+D"},
      {"100% %41 50%25", "100%25+%2541+50%2525"},
      {"\"Q\" 'q' <a> `b`", "%22Q%22+'q'+%3Ca%3E+%60b%60"},
      {"#1; {x}|[y]\\^z", "%231;+%7Bx%7D%7C%5By%5D%5C%5Ez"},
      {"a/b@c:d,e!f$g(h)*i~j", "a/b@c:d,e!f$g(h)*i~j"},
      {"😀👩‍👧", "%F0%9F%98%80%F0%9F%91%A9%E2%80%8D%F0%9F%91%A7"},
      {"Beyonce\u0301 \u00e9 ＆", "Beyonce%CC%81+%C3%A9+%EF%BC%86"},
      {"../.. /./\r\nX: y\t", "../..+/./%0D%0AX:+y%09"},
  };
  server.reply = "{}";
  for (const auto& [name, term] : names) {
    lookUp(name, name);
    VLLink::openStoreForArtist(name);
    EXPECT_THAT(server.requestLines(),
                ElementsAre("GET /search?term=" + term + "+" + term + "&entity=album HTTP/1.1",
                            "GET /search?term=" + term +
                                "&media=music&attribute=artistTerm&entity=musicArtist HTTP/1.1"));
  }
}

TEST_F(Store, HostsThatRefuseStallOrCannotProveThemselvesBringNothingInTime) {
  const tests::LoopbackServer stalling([](const tests::Exchange&) {});
  StoreServer stranger;
  const std::string answer =
      results(1, R"({"artistName":"Foo","artistLinkUrl":"https://music.example/foo/1",)"
                 R"("collectionName":"Bar","artworkUrl100":"https://music.example/1.jpg"})");
  server.reply = stranger.reply = answer;
  const std::pair<const char*, std::string> hosts[] = {
      {"refuses", "127.0.0.1:1"},
      {"stalls", stalling.host()},
      {"is not trusted", stranger.host()},
      {"has another name", "localhost" + server.port()}};
  transport.longestTimeout = 1;
  for (const auto& [fault, host] : hosts) {
    SCOPED_TRACE(fault);
    ask(host);
    EXPECT_FALSE(VLLink::openStoreForArtist("Foo"));
    EXPECT_EQ(transport.lastTimeout, 3);
    EXPECT_EQ(tests::nameOf(lookUp("Foo", "Bar")), "before");
    EXPECT_EQ(transport.lastTimeout, 60);
    ask(server.host());
    server.reply =
        results(1, R"({"artistName":"Foo","collectionName":"Bar","artworkUrl100":"https://)" +
                       host + R"(/cover/1.jpg"})");
    EXPECT_EQ(tests::nameOf(lookUp("Foo", "Bar")), virelune::VLImageArtworkBackground);
    EXPECT_EQ(server.requestLines().size(), 1U) << "the search for the cover";
  }
  EXPECT_THAT(stranger.requestLines(), IsEmpty()) << "nothing is told to a stranger";
  EXPECT_THAT(workspaceBackend.asked, IsEmpty());
}

TEST_F(Store, DemoStoreHasTheCoverThatTheDemoLibraryLacks) {
  const auto store = demo::DemoStore::start();
  ASSERT_NE(store, nullptr);
  transport.trust(store->certificate());
  ask(store->host());
  const demo::Track track = demo::library()[demo::trackWithoutCover];
  EXPECT_EQ(tests::nameOf(lookUp(track.artist, track.album)), "cover");
  EXPECT_EQ(tests::nameOf(lookUp(track.artist, "Another Album")), "before");
}
