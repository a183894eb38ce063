#include <gtest/gtest.h>

#include <random>

#include "demo/demo_station.h"
#include "platform/network/curl_transport.h"
#include "radio/beats1_info_loader.h"
#include "tests/integration/encoded_station.h"
#include "tests/integration/loopback_server.h"
#include "tests/radio/segments.h"
#include "tests/support/widget_fixture.h"

using tests::Exchange;
using tests::LoopbackServer;
using tests::reply;
using virelune::VLBeats1InfoLoader;

namespace {

const std::string playlist = "#EXT-X-TARGETDURATION:10\nlive-20160305T140709Z.aac\n";

/// A station of the test: it sends these replies, whole and raw.
LoopbackServer::Handler station(std::function<std::string(Exchange&)> playlistReply,
                                std::function<std::string(const Exchange&)> segmentReply,
                                std::string artworkReply) {
  return [=](Exchange& exchange) {
    exchange.keepsAlive = true;
    if (exchange.target == "/streams/hub02/session02/64k/prog.m3u8") {
      exchange.send(playlistReply(exchange));
    } else if (exchange.target == "/streams/hub02/session02/64k/live-20160305T140709Z.aac") {
      exchange.send(segmentReply(exchange));
    } else {
      exchange.send(artworkReply);
    }
  };
}

std::string playlistReply(const Exchange&) { return reply(playlist); }

std::string segmentReply(const Exchange& exchange) {
  return reply(tests::segmentHead("Title", "", "", "http://" + exchange.host + "/cover.jpg"));
}

/// The loader over real HTTP; only the clock stands still.
class LiveRadio : public tests::WidgetFixture {
 protected:
  LiveRadio() { platform_.http = &transport; }

  void listenTo(const std::string& host) {
    bundle->setInfoDictionaryEntry("VLStreamHost", host);
    loader = platform::make<VLBeats1InfoLoader>();
    ASSERT_TRUE(loader->start(nullptr));
  }
  /// Turns the run loop until the loader waits for its next cycle.
  void waitForCycle() {
    for (clock.settle(); loader->contentTimer() == nullptr; clock.settle()) clock.waitForWork();
  }

  platform::CurlTransport transport;
  std::shared_ptr<VLBeats1InfoLoader> loader;
};

}  // namespace

TEST_F(LiveRadio, ReadsSegmentsThatAnEncoderWrote) {
  const std::vector<std::vector<std::string>> programmes = {
      {"夜明けの交差点", "水色レイディオ", "夏の終わりの地図"},
      {"Το φως στο λιμάνι", "Νεφέλη Αύρα", "Μικρά ταξίδια"},
  };
  for (const auto& texts : programmes) {
    const tests::EncodedStation encoded(texts[0], texts[1], texts[2]);
    listenTo(encoded.host());
    waitForCycle();
    EXPECT_EQ(loader->infoTrackName(), texts[0]);
    EXPECT_EQ(loader->infoTrackArtist(), texts[1]);
    EXPECT_EQ(loader->infoTrackAlbum(), texts[2]);
    EXPECT_EQ(tests::nameOf(loader->infoTrackArtwork()), "cover");
    loader.reset();
  }
}

TEST_F(LiveRadio, FollowsTheDemoStation) {
  const auto station = demo::DemoStation::start({.segmentDuration = 1, .segmentsPerProgramme = 1});
  ASSERT_NE(station, nullptr);
  listenTo(station->host());
  std::set<std::string> titles;
  while (titles.size() < 2) {  // the programme moves on
    waitForCycle();
    ASSERT_TRUE(loader->infoTrackName());
    EXPECT_TRUE(loader->infoTrackArtist() && loader->infoTrackAlbum());
    EXPECT_EQ(tests::nameOf(loader->infoTrackArtwork()), "cover");
    EXPECT_GT(loader->infoPlaylistDuration(), 0);
    titles.insert(*loader->infoTrackName());
    clock.advance(loader->contentTimer()->timeInterval());
  }
}

TEST_F(LiveRadio, RecoversFromEveryFaultOfTheServer) {
  const std::vector<std::string> faults = {"", "HTTP/1.1 200 OK\r\nContent-Length: 9\r\n\r\nabc",
                                           reply("<html></html>", "500 Internal Server Error"),
                                           tests::redirect("file:///etc/hostname"),
                                           tests::redirect("/elsewhere")};
  std::atomic<std::size_t> served = 0;
  const auto faultyReply = [&](Exchange& exchange) {
    if (served == faults.size()) return reply(playlist);
    exchange.keepsAlive = false;
    exchange.reset();
    return faults.at(served++);
  };
  LoopbackServer server(station(faultyReply, segmentReply, reply("not found", "404 Not Found")));
  listenTo(server.host());
  for (std::size_t cycle = 0; cycle < faults.size(); ++cycle) {
    waitForCycle();
    EXPECT_EQ(served, cycle + 1);
    EXPECT_EQ(loader->contentTimer()->timeInterval(), 5);
    clock.advance(5);
  }
  waitForCycle();
  EXPECT_EQ(loader->infoTrackName(), "Title");
  EXPECT_EQ(loader->infoTrackArtwork(), nullptr) << "a page in place of the artwork";
}

TEST_F(LiveRadio, LoadersStartedStoppedAndReplacedAtRandomMomentsStayQuiet) {
  LoopbackServer server(station(playlistReply, segmentReply, reply("image:cover")));
  std::mt19937 random(20160305);
  for (int round = 0; round < 10'000; ++round) {
    const auto choice = round == 0 ? 0 : random() % 4;
    if (choice == 0) listenTo(server.host());  // the loader before is destroyed
    if (choice == 1) loader->stop(nullptr);
    if (choice == 2) loader->start(nullptr);
    if (choice == 3) clock.settle();
    for (auto turns = random() % 64; turns > 0; --turns) std::this_thread::yield();
    if (round % 1000 == 0) {
      listenTo(server.host());
      waitForCycle();
      EXPECT_EQ(loader->infoTrackName(), "Title");
    }
  }
  loader.reset();
  clock.settle();
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 0U);
}
