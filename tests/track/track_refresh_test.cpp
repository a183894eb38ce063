#include "tests/track/track_fixture.h"

namespace virelune {
namespace {

using TrackRefresh = tests::TrackFixture;

TEST_F(TrackRefresh, AFullRefreshAsksExactlyThisInThisOrder) {
  show(demo::statePaused);
  panel->update(panel.get());
  EXPECT_EQ(asked(),
            "pnam pPlS pnam "                                      // name
            "pnam pPlS pArt pAlb "                                 // artist line
            "pPlS pPlS pPos pTim "                                 // time
            "pnam pPlS count cArt cArt[0].pRaw "                   // artwork
            "pnam pPlS count cArt pnam pPlS pAlA pnam pPlS pAlb "  // and its look-up
            "pPlS pPlS "                                           // play button
            "pPlS pDur pPlS pPos "                                 // bar
            "pPlS pLov "                                           // love
            "pPlS pRtk pPlS pRte "                                 // stars
            "pnam");                                               // is it the live station
}

TEST_F(TrackRefresh, AnAlbumArtistThatIsMissingGivesWayToTheArtistInTheLookUp) {
  show(demo::statePaused, demo::trackWithoutCover);
  player.currentTrack()->albumArtist = "";
  player.clearLog();
  const std::size_t before = http.count();
  panel->updateArtworkButton();
  EXPECT_THAT(player.log(), testing::Contains("get pTrk.pArt").Times(1));
  EXPECT_EQ(http.count(), before + 1) << "the album is looked up in the store";
  EXPECT_THAT(http.last().request.url, testing::HasSubstr("Oda+Brenner+Last+Stops"));
}

TEST_F(TrackRefresh, TheHeartbeatAsksForAndRepaintsOnlyThePositionEverySecond) {
  show(demo::statePaused);
  player.setPosition(7);
  clock.advance(0.9);
  EXPECT_EQ(asked(), "");
  clock.advance(0.1);
  EXPECT_EQ(asked(), "pPlS pPos pPlS pPlS pPos pTim");
  EXPECT_EQ(panel->contentProgressIndicator()->nowValue(), 7.0);
  EXPECT_EQ(panel->contentTimeTextLabel()->text(), "00:07 | 3:45");
  const auto bar = platform::NSMakeRect(0, 0, 320, 7);
  EXPECT_THAT(marked, testing::Each(testing::AnyOf(bar, platform::NSMakeRect(0, -7, 320, 14),
                                                   panel->contentTimeTextLabel()->frame())));
  player.clearLog();
  clock.advance(10);
  EXPECT_EQ(player.requestCount(), 60U);
}

TEST_F(TrackRefresh, OneHeartbeatTicksWhileShownAndNoneWhileHidden) {
  show();
  panel->startHeartbeatTimer(panel.get());
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 2U) << "the demo player's and the heartbeat";
  window->setVisible(false);
  player.pause();
  player.clearLog();
  clock.advance(60);
  EXPECT_EQ(player.requestCount(), 0U);
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 0U);
  window->setVisible(true);
  EXPECT_THAT(player.log(), testing::Contains("get pTrk.pDur").Times(1)) << "refreshed once";
}

TEST_F(TrackRefresh, DestroyedWhileShownItLeavesNothingBehind) {
  show(demo::statePaused, demo::liveStation);
  ASSERT_EQ(http.inFlight(), 1U);
  panel = nullptr;
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 0U);
  EXPECT_EQ(platform_.defaultCenter->registrationCount(), 0U);
  EXPECT_EQ(platform_.distributedCenter->registrationCount(), 0U);
  EXPECT_EQ(http.inFlight(), 0U);
  player.announce();
  clock.advance(2);
  click({160, 3});
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
      const bool hasName = panel->contentNameTextLabel()->text().has_value();
      EXPECT_EQ(hasName, !quits && last > 3) << "its last question is the third: " << last;

      player.setSilent(false);
      startPlayer(demo::statePaused);
      ASSERT_EQ(panel->contentNameTextLabel()->text(), "Paper Lanterns") << last;
      ASSERT_EQ(panel->contentRatingIndicator()->nowValue(), 80);
    }
  }
}

}  // namespace
}  // namespace virelune
