#include "tests/track/track_fixture.h"

namespace virelune {
namespace {

using TrackLive = tests::TrackFixture;

TEST_F(TrackLive, EachRefreshLeavesOneFreshLoaderAndOneObserver) {
  show(demo::statePlaying, demo::liveStation);
  const auto first = panel->contentBeats1InfoLoader();
  ASSERT_NE(first, nullptr);
  player.announce();
  player.announce();
  clock.settle();
  EXPECT_NE(panel->contentBeats1InfoLoader(), first);
  EXPECT_EQ(http.inFlight(), 1U);
  EXPECT_EQ(platform_.defaultCenter->registrationCount(), 1U);

  first->postInfoNotification();
  player.clearLog();
  clock.settle();
  EXPECT_EQ(player.requestCount(), 0U) << "a replaced loader is not heard any more";
}

TEST_F(TrackLive, TheLoadersNotificationRefreshesWhatTheProgrammeDescribes) {
  show(demo::statePaused, demo::liveStation);
  const auto loader = panel->contentBeats1InfoLoader();
  loader->trackInfoUpdateForKey_withValue("track name", "Title");
  loader->postInfoNotification();
  EXPECT_EQ(panel->contentNameTextLabel()->text(), "Beats 1");
  clock.settle();
  EXPECT_EQ(panel->contentNameTextLabel()->text(), "Title");
  EXPECT_THAT(player.log(), testing::Not(testing::Contains("get pTrk.pDur")));
  EXPECT_EQ(panel->contentBeats1InfoLoader(), loader);
}

TEST_F(TrackLive, AnotherTrackOrHidingEndsTheLoader) {
  show(demo::statePlaying, demo::liveStation);
  player.playTrack(0);
  clock.settle();
  EXPECT_EQ(panel->contentBeats1InfoLoader(), nullptr);
  EXPECT_EQ(http.inFlight(), 0U);
  player.playTrack(demo::liveStation);
  clock.settle();
  EXPECT_EQ(http.inFlight(), 1U);
  window->setVisible(false);
  EXPECT_EQ(panel->contentBeats1InfoLoader(), nullptr);
  EXPECT_EQ(http.inFlight(), 0U);
}

TEST_F(TrackLive, ALoaderThatCannotStartLeavesTheOneBeforeRunning) {
  show(demo::statePlaying, demo::liveStation);
  const auto loader = panel->contentBeats1InfoLoader();
  platform_.http = nullptr;
  EXPECT_FALSE(panel->startBeats1InfoLoader(panel.get()));
  EXPECT_EQ(panel->contentBeats1InfoLoader(), loader);
  EXPECT_EQ(platform_.defaultCenter->registrationCount(), 1U);

  panel->stopBeats1InfoLoader(panel.get());
  panel->update(panel.get());
  EXPECT_EQ(panel->contentBeats1InfoLoader(), nullptr);
  EXPECT_EQ(panel->contentNameTextLabel()->text(), "Beats 1");
}

}  // namespace
}  // namespace virelune
