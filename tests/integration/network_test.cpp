// The live station, and the look-up of covers and of artists' pages over TLS, through the real
// transport; only the clock stands still.
#include <random>

#include "controls/artwork_button.h"
#include "demo/demo_station.h"
#include "demo/demo_store.h"
#include "platform/network/curl_transport.h"
#include "radio/beats1_info_loader.h"
#include "radio/url_connection.h"
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

struct Store : LiveRadio {
  static bool answers(const std::string& host) {
    const platform::NSURLRequest request(*platform::URL::fromText("https://" + host + "/search"));
    return virelune::vl_sendSynchronousRequest(request).has_value();
  }
};

TEST_F(Store, HasTheCoverThatTheDemoLibraryLacksAndHostsThatCannotProveThemselvesBringNothing) {
  const auto store = demo::DemoStore::start(), stranger = demo::DemoStore::start();
  platform::CurlTransport trusting{store->certificate()};
  platform_.http = &trusting;
  const std::string host = store->host();
  ASSERT_TRUE(answers(host));
  EXPECT_FALSE(answers(stranger->host()));
  EXPECT_FALSE(answers("localhost" + host.substr(host.find(':')))) << "of another name";
  bundle->setInfoDictionaryEntry("VLStoreSearchHost", host);
  const demo::Track track = demo::library()[demo::trackWithoutCover];
  const auto button = platform::make<virelune::VLArtworkButton>();
  button->setArtwork_forArtist_withAlbum_download(nullptr, track.artist, track.album, true);
  for (clock.settle(); nameOf(button->image()) != "cover"; clock.settle()) clock.waitForWork();
}

}  // namespace
}  // namespace tests
