#include "tests/track/track_fixture.h"
#include "widget/constants.h"

namespace virelune {
namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using TrackRefresh = tests::TrackFixture;

constexpr const char* kState = "get pPlS";
constexpr const char* kName = "get pTrk.pnam";

TEST_F(TrackRefresh, AFullRefreshAsksExactlyThisInThisOrder) {
  show(demo::kPaused);
  panel->update(panel.get());
  const std::vector<std::string> expected = {kName,
                                             kState,
                                             kName,  // name
                                             kName,
                                             kState,
                                             "get pTrk.pArt",
                                             "get pTrk.pAlb",  // artist line
                                             kState,
                                             kState,
                                             "get pPos",
                                             "get pTrk.pTim",  // time
                                             kName,
                                             kState,
                                             "count pTrk.cArt",
                                             "get pTrk.cArt[0].pRaw",  // artwork
                                             kName,
                                             kState,
                                             "count pTrk.cArt",  //
                                             kName,
                                             kState,
                                             "get pTrk.pAlA",
                                             kName,
                                             kState,
                                             "get pTrk.pAlb",  //
                                             kState,
                                             kState,  // play button
                                             kState,
                                             "get pTrk.pDur",
                                             kState,
                                             "get pPos",  // bar
                                             kState,
                                             "get pTrk.pLov",  // love
                                             kState,
                                             "get pTrk.pRtk",
                                             kState,
                                             "get pTrk.pRte",  // stars
                                             kName};           // live station?
  EXPECT_THAT(player.log(), ElementsAreArray(expected));
}

TEST_F(TrackRefresh, AnAlbumArtistThatIsMissingGivesWayToTheArtistInTheLookUp) {
  show(demo::kPaused, demo::kTrackWithoutCover);
  player.currentTrack()->albumArtist = "";
  player.clearLog();
  const std::size_t before = http.count();
  panel->updateArtworkButton();
  EXPECT_THAT(player.log(), testing::Contains("get pTrk.pArt").Times(1));
  EXPECT_EQ(http.count(), before + 1) << "the album is looked up in the store";
  EXPECT_THAT(http.last().request.url, testing::HasSubstr("Oda+Brenner+Last+Stops"));
}

TEST_F(TrackRefresh, ShowingRefreshesOnceAndStartsOneHeartbeat) {
  startPlayer(demo::kPaused);
  panel = platform::make<VLTrackViewController>();
  window->setContentView(panel->view());
  player.setLogging(true);
  player.clearLog();
  window->setVisible(true);
  EXPECT_THAT(player.log(), testing::Contains("get pTrk.pDur").Times(1));
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 1U);
  panel->startHeartbeatTimer(panel.get());
  panel->startHeartbeatTimer(panel.get());
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 1U);
}

TEST_F(TrackRefresh, TheHeartbeatAsksForAndRepaintsOnlyThePositionEverySecond) {
  show(demo::kPaused);
  player.setPosition(7);
  clock.advance(0.9);
  EXPECT_THAT(player.log(), IsEmpty());
  clock.advance(0.1);
  EXPECT_THAT(player.log(),
              ElementsAre(kState, "get pPos", kState, kState, "get pPos", "get pTrk.pTim"));
  EXPECT_EQ(panel->contentProgressIndicator()->nowValue(), 7.0);
  EXPECT_EQ(panel->contentTimeTextLabel()->text(), "00:07 | 3:45");
  for (const auto& rect : marked) {
    EXPECT_TRUE(rect == platform::NSMakeRect(0, 0, 320, 7) ||
                rect == platform::NSMakeRect(0, -7, 320, 14) ||
                rect == panel->contentTimeTextLabel()->frame())
        << rect.minX() << ' ' << rect.minY();
  }
  player.clearLog();
  clock.advance(10);
  EXPECT_EQ(player.requestCount(), 60U);
}

TEST_F(TrackRefresh, NothingTicksWhileHidden) {
  show();
  window->setVisible(false);
  player.pause();
  player.clearLog();
  clock.advance(60);
  EXPECT_EQ(player.requestCount(), 0U);
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 0U);
  window->setVisible(true);
  EXPECT_EQ(tests::nameOf(panel->contentPlayButton()->image()), VLImageControllerPlay);
}

TEST_F(TrackRefresh, DestroyedWhileShownItLeavesNothingBehind) {
  show(demo::kPaused, demo::kLiveStation);
  ASSERT_EQ(http.inFlight(), 1U);
  panel = nullptr;
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 0U);
  EXPECT_EQ(platform_.defaultCenter.registrationCount(), 0U);
  EXPECT_EQ(platform_.distributedCenter.registrationCount(), 0U);
  EXPECT_EQ(http.inFlight(), 0U);
  player.announce();
  clock.advance(2);
  click({160, 3});
}

TEST_F(TrackRefresh, APlayerThatGoesInTheMiddleOfARefreshIsSurvivedAndFoundAgain) {
  show(demo::kPaused);
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
      startPlayer(demo::kPaused);
      ASSERT_EQ(panel->contentNameTextLabel()->text(), "Paper Lanterns") << last;
      ASSERT_EQ(panel->contentRatingIndicator()->nowValue(), 80);
    }
  }
}

}  // namespace
}  // namespace virelune
