#include "tests/track/track_fixture.h"

namespace virelune {
namespace {

using testing::HasSubstr;

using TrackRefresh = tests::TrackFixture;

TEST_F(TrackRefresh, TheLookUpGoesByTheAlbumArtistAndOnlyWithoutOneByTheArtist) {
  show(demo::statePaused, demo::trackWithoutCover);
  player.currentTrack()->albumArtist = "Various";
  panel->updateArtworkButton();
  EXPECT_THAT(http.last().request.url, HasSubstr("Various+Last+Stops"));
  player.currentTrack()->albumArtist = "";
  panel->updateArtworkButton();
  EXPECT_THAT(http.last().request.url, HasSubstr("Oda+Brenner+Last+Stops"));
}

TEST_F(TrackRefresh, TheHeartbeatAsksForAndRepaintsOnlyThePositionEverySecondWhileShown) {
  show(demo::statePaused);
  player.setPosition(7);
  clock.advance(0.9);
  EXPECT_EQ(asked(), "");
  clock.advance(0.1);
  EXPECT_EQ(asked(), "pPlS pPos pPlS pPlS pPos pTim");
  EXPECT_EQ(panel->contentProgressIndicator()->nowValue(), 7.0);
  EXPECT_EQ(panel->contentTimeTextLabel()->text(), "00:07 | 3:45");
  EXPECT_THAT(marked, testing::ElementsAre(platform::NSMakeRect(0, 0, 320, 7),
                                           panel->contentTimeTextLabel()->frame()));
  player.clearLog();
  clock.advance(10);
  EXPECT_EQ(player.requestCount(), 60U);

  panel->startHeartbeatTimer(panel.get());
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 1U) << "never two";
  window->setVisible(false);
  player.clearLog();
  clock.advance(60);
  EXPECT_EQ(asked(), "") << "hidden";
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 0U);
  window->setVisible(true);
  EXPECT_THAT(player.log(), testing::Contains("get pTrk.pDur").Times(1)) << "refreshed once";

  player.setRequestHook([this](const auto&) { clock.pass(5); });
  clock.advance(1);
  EXPECT_EQ(clock.runLoop().nextDeadline(), clock.now() + 1)
      << "a slow player stretches the rhythm";
  window->setVisible(false);
  window->setVisible(true);
  EXPECT_EQ(clock.runLoop().nextDeadline(), clock.now() + 1) << "begins after the first refresh";
}

TEST_F(TrackRefresh, WhatIsNotKnownAnyMoreIsCleared) {
  show(demo::statePaused);
  player.setPosition(20);
  clock.advance(1);
  player.quit();
  panel->update(panel.get());
  EXPECT_EQ(panel->contentNameTextLabel()->text(), std::nullopt);
  EXPECT_EQ(panel->contentArtistTextLabel()->text(), std::nullopt);
  EXPECT_EQ(panel->contentTimeTextLabel()->text(), std::nullopt);
  EXPECT_THAT(
      painted(),
      testing::ElementsAre(VLImageControllerNext, VLImageControllerPlay, VLImageControllerPrevious,
                           VLImageLoveOff, VLImageRatingStarDot, VLImageRatingStarDot,
                           VLImageRatingStarDot, VLImageRatingStarDot, VLImageRatingStarDot));
  EXPECT_FALSE(panel->contentProgressIndicator()->isMaxValueValid());
  EXPECT_EQ(panel->contentProgressIndicator()->nowValue(), 0);
}

TEST_F(TrackRefresh, APlayerThatGoesInTheMiddleOfARefreshIsSurvivedAndFoundAgain) {
  show(demo::statePaused);
  panel->update(panel.get());
  const std::size_t requests = player.requestCount();
  for (const bool quits : {true, false}) {
    for (std::size_t last = 1; last <= requests; ++last) {
      player.clearLog();
      player.setRequestHook([&](const platform::ScriptingRequest&) {
        if (player.requestCount() < last) return;
        quits ? player.quit() : player.setSilent(true);
      });
      panel->update(panel.get());
      player.setRequestHook(nullptr);
      clock.settle();
      player.setSilent(false);
      startPlayer(demo::statePaused);
      ASSERT_EQ(panel->contentNameTextLabel()->text(), "Paper Lanterns") << last;
      ASSERT_EQ(panel->contentRatingIndicator()->nowValue(), 80);
    }
  }
}

using TrackLive = tests::TrackFixture;

TEST_F(TrackLive, EachRefreshLeavesOneFreshLoaderUntilAnotherTrackOrHidingEndsIt) {
  show(demo::statePlaying, demo::liveStation);
  const auto first = panel->contentBeats1InfoLoader();
  ASSERT_NE(first, nullptr);
  for (int i = 0; i < 2; ++i) player.announce();
  clock.settle();
  EXPECT_NE(panel->contentBeats1InfoLoader(), first);
  EXPECT_EQ(http.inFlight(), 1U);
  EXPECT_EQ(platform_.defaultCenter->registrationCount(), 1U);
  first->postInfoNotification();
  player.clearLog();
  clock.settle();
  EXPECT_EQ(player.requestCount(), 0U) << "a replaced loader is not heard any more";

  player.playTrack(0);
  clock.settle();
  EXPECT_EQ(panel->contentBeats1InfoLoader(), nullptr);
  EXPECT_EQ(http.inFlight() + platform_.defaultCenter->registrationCount(), 0U);
  player.playTrack(demo::liveStation);
  clock.settle();
  EXPECT_EQ(http.inFlight(), 1U);
  window->setVisible(false);
  EXPECT_EQ(panel->contentBeats1InfoLoader(), nullptr);
  EXPECT_EQ(http.inFlight() + platform_.defaultCenter->registrationCount(), 0U);
}

}  // namespace
}  // namespace virelune
