// The live station, and the look-up of covers and of artists' pages over TLS, through the real
// transport; only the clock stands still.
#include <random>

#include "controls/artwork_button.h"
#include "demo/demo_station.h"
#include "demo/demo_store.h"
#include "panels/link.h"
#include "platform/network/curl_transport.h"
#include "radio/beats1_info_loader.h"
#include "tests/integration/loopback_server.h"
#include "tests/support/widget_fixture.h"

namespace tests {
namespace {

struct LiveRadio : WidgetFixture {
  LiveRadio() { platform_.http = &transport; }

  void listenTo(const std::string& host) {
    bundle->setInfoDictionaryEntry("VLStreamHost", host);
    loader = platform::make<virelune::VLBeats1InfoLoader>();
    ASSERT_TRUE(loader->start(nullptr));
  }
  /// Turns the run loop until the loader waits for its next cycle.
  void waitForCycle() {
    for (clock.settle(); loader->contentTimer() == nullptr; clock.settle()) clock.waitForWork();
  }

  platform::CurlTransport transport;
  std::shared_ptr<virelune::VLBeats1InfoLoader> loader;
};

TEST_F(LiveRadio, FollowsTheDemoStationAlsoAfterStartsAndEndsAtRandomMoments) {
  const auto station = demo::DemoStation::start({.segmentDuration = 1, .segmentsPerProgramme = 1});
  ASSERT_NE(station, nullptr);
  std::mt19937 random(20160305);
  listenTo(station->host());
  for (int round = 0; round < 10'000; ++round) {
    const auto choice = random() % 4;
    if (choice == 0) listenTo(station->host());  // the loader before is destroyed
    if (choice == 1) loader->stop(nullptr);
    if (choice == 2) loader->start(nullptr);
    if (choice == 3) clock.settle();
    for (auto turns = random() % 64; turns > 0; --turns) std::this_thread::yield();
  }
  listenTo(station->host());
  std::set<std::string> titles;
  while (titles.size() < 2) {  // the programme moves on
    waitForCycle();
    ASSERT_TRUE(loader->infoTrackName());
    EXPECT_TRUE(loader->infoTrackArtist() && loader->infoTrackAlbum());
    EXPECT_EQ(nameOf(loader->infoTrackArtwork()), "cover");
    EXPECT_GT(loader->infoPlaylistDuration(), 0);
    titles.insert(*loader->infoTrackName());
    clock.advance(loader->contentTimer()->timeInterval());
  }
  loader.reset();
  clock.settle();
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 0U);
}

/// The real transport, watched: when it is idle, all that a look-up asked for has completed.
class WatchedTransport final : public platform::HTTPTransport {
 public:
  explicit WatchedTransport(const std::string& certificate) : transport_(certificate) {}
  std::shared_ptr<platform::HTTPTransfer> start(platform::HTTPRequest request,
                                                Completion completion) override {
    lastTimeout = std::exchange(request.timeout, 1);
    ++underWay_;
    return transport_.start(std::move(request), [this, completion = std::move(completion)](
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

 private:
  std::atomic<int> underWay_ = 0;
  platform::CurlTransport transport_;
};

struct Store : WidgetFixture {
  Store() { platform_.http = &transport; }

  void ask(const std::string& host) { bundle->setInfoDictionaryEntry("VLStoreSearchHost", host); }
  /// Shows something, looks a cover up and answers what is shown once the look-up has ended.
  std::string lookUp(const std::string& artist, const std::string& album) {
    const auto before = platform::make<TestImage>("before", platform::NSSize{1, 1});
    const auto button = platform::make<virelune::VLArtworkButton>();
    button->setArtwork_forArtist_withAlbum_download(before, artist, album, true);
    transport.waitUntilIdle();
    EXPECT_EQ(button->contentURLSessionDataTask(), nullptr);
    clock.settle();
    return nameOf(button->image());
  }

  const std::unique_ptr<demo::DemoStore> store = demo::DemoStore::start();
  WatchedTransport transport{store->certificate()};
};

TEST_F(Store, HasTheCoverThatTheDemoLibraryLacksAndHostsThatCannotProveThemselvesBringNothing) {
  const LoopbackServer stalling([](const Exchange&) {});
  const auto stranger = demo::DemoStore::start();
  const demo::Track track = demo::library()[demo::trackWithoutCover];
  const std::string host = store->host();
  for (const std::string& bad : {std::string("127.0.0.1:1"), stalling.host(), stranger->host(),
                                 "localhost" + host.substr(host.find(':'))}) {
    ask(bad);
    EXPECT_FALSE(virelune::VLLink::openStoreForArtist(track.artist)) << bad;
    EXPECT_EQ(transport.lastTimeout, 3);
    EXPECT_EQ(lookUp(track.artist, track.album), "before") << bad;
    EXPECT_EQ(transport.lastTimeout, 60);
  }
  ask(host);
  EXPECT_EQ(lookUp(track.artist, track.album), "cover");
  EXPECT_EQ(lookUp(track.artist, "Another Album"), "before");
}

}  // namespace
}  // namespace tests
