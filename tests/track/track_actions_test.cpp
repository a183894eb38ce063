#include "tests/support/instant_http.h"
#include "tests/track/track_fixture.h"
#include "widget/constants.h"

namespace virelune {
namespace {

using platform::NSEventModifierFlagOption;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using tests::nameOf;

class TrackActions : public tests::TrackFixture {
 protected:
  void clickControl(std::size_t index, std::uint64_t flags = 0) {
    click(centerOf(*panel->view()->subviews().at(index)), flags);
  }
  static constexpr std::size_t kArtwork = 0, kNext = 3, kPlay = 4, kPrevious = 5, kLove = 7;
  /// The middle of the third star.
  static constexpr platform::NSPoint kThreeStars{79 + 39, 16};
};

TEST_F(TrackActions, TransportClicksChangeNothingUntilThePlayerSaysSo) {
  show();
  const auto before = painted();
  const std::tuple<std::size_t, const char*, const char*> clicks[] = {
      {kPlay, "command hook/PlPs", "Paper Lanterns"},
      {kNext, "command hook/Next", "Night Bus, Upper Deck"},
      {kPrevious, "command hook/Prev", "Paper Lanterns"},
  };
  for (const auto& [control, command, track] : clicks) {
    player.clearLog();
    marked.clear();
    const auto shown = panel->contentNameTextLabel()->text();
    clickControl(control);
    EXPECT_THAT(player.log(), ElementsAre("get pPlS", command));
    EXPECT_EQ(panel->contentNameTextLabel()->text(), shown);
    clock.settle();
    EXPECT_EQ(panel->contentNameTextLabel()->text(), track);
  }
  EXPECT_EQ(nameOf(panel->contentPlayButton()->image()), VLImageControllerPlay) << "paused";
  EXPECT_NE(painted(), before);
}

TEST_F(TrackActions, ClicksAfterThePlayerHasQuitSendNothing) {
  show();
  player.quit();
  player.clearLog();
  for (const std::size_t control : {kArtwork, kNext, kPlay, kPrevious, kLove}) {
    clickControl(control);
  }
  click({160, 3});
  click(kThreeStars);
  EXPECT_THAT(player.log(), IsEmpty());
}

TEST_F(TrackActions, APressOnTheBarSeeksThere) {
  show(demo::kPaused);
  sendMouse(platform::NSEventType::leftMouseDown, {160, 3});
  EXPECT_EQ(player.position(), 112.5);
  EXPECT_THAT(player.log(), ElementsAre("get pPlS", "set pPos 112.5", "get pPlS", "get pPos"));
  EXPECT_EQ(panel->contentProgressIndicator()->nowValue(), 112.5);
  sendMouse(platform::NSEventType::leftMouseUp, {160, 3});
  clock.settle();
  EXPECT_EQ(panel->contentTimeTextLabel()->text(), "01:52 | 3:45");
}

TEST_F(TrackActions, ASeekThatThePlayerRefusesFallsBackToItsPosition) {
  show(demo::kPaused);
  player.setPosition(10);
  player.setRefusesWrites(true);
  click({160, 3});
  EXPECT_EQ(panel->contentProgressIndicator()->nowValue(), 10.0);
}

TEST_F(TrackActions, OnlyThePanelsOwnControlsSeekAndRate) {
  show();
  const auto bar = platform::make<VLProgressIndicator>();
  const auto stars = platform::make<VLRatingIndicator>();
  for (platform::NSObject* sender :
       std::initializer_list<platform::NSObject*>{nullptr, bar.get(), stars.get(), panel.get()}) {
    EXPECT_FALSE(panel->clickedProgressIndicator(sender));
    EXPECT_FALSE(panel->clickedRatingIndicator(sender));
  }
  EXPECT_FALSE(panel->clickedLoveButton(nullptr));
  EXPECT_THAT(player.log(), IsEmpty());
}

TEST_F(TrackActions, LoveAndStarsActOnTheTrackAndWithOptionOnItsAlbum) {
  show(demo::kPaused, demo::kTrackWithoutCover);
  demo::Marks& track = player.currentTrack()->marks;
  demo::Marks& album = player.albumMarks(*player.currentTrack());

  clickControl(kLove, NSEventModifierFlagOption);
  EXPECT_TRUE(album.loved);
  EXPECT_FALSE(track.loved);
  click(kThreeStars, NSEventModifierFlagOption | platform::NSEventModifierFlagShift);
  EXPECT_EQ(album.rating, 60);
  EXPECT_EQ(track.rating, 0);
  EXPECT_EQ(panel->contentRatingIndicator()->nowValue(), 0) << "the track's stars are shown";

  clickControl(kLove);
  EXPECT_TRUE(track.loved);
  EXPECT_EQ(nameOf(panel->contentLoveButton()->image()), VLImageLoveOn) << "at once";
  click(kThreeStars);
  EXPECT_EQ(track.rating, 60);
  EXPECT_EQ(panel->contentRatingIndicator()->nowValue(), 60);
  EXPECT_EQ(panel->contentRatingIndicator()->ratingType(), VLRatingTypeUser);
}

TEST_F(TrackActions, AClickIsFollowedByTheRefreshOfBothMarks) {
  show(demo::kPaused);
  clickControl(kLove);
  EXPECT_THAT(player.log(),
              ElementsAre("get pTrk.pLov", "set pTrk.pLov false", "get pPlS", "get pTrk.pLov",
                          "get pPlS", "get pTrk.pRtk", "get pPlS", "get pTrk.pRte"));
  player.clearLog();
  click(kThreeStars);
  EXPECT_THAT(player.log(), ElementsAre("get pPlS", "set pTrk.pRte 60", "get pPlS", "get pTrk.pRtk",
                                        "get pPlS", "get pTrk.pRte", "get pPlS", "get pTrk.pLov"));
}

TEST_F(TrackActions, AMarkThatThePlayerRefusesIsShownAsItReallyIs) {
  show(demo::kPaused);
  player.setRefusesWrites(true);
  click(kThreeStars);
  clickControl(kLove);
  EXPECT_EQ(panel->contentRatingIndicator()->nowValue(), 80);
  EXPECT_EQ(nameOf(panel->contentLoveButton()->image()), VLImageLoveOn);
}

TEST_F(TrackActions, TheArtworkRevealsTheTrackInThePlayer) {
  show();
  clickControl(kArtwork);
  EXPECT_THAT(player.log(), ElementsAre("get pTrk.pnam", "get pPlS", "command misc/actv",
                                        "command pTrk hook/Revl"));
  EXPECT_EQ(workers.count(), 0U);
}

TEST_F(TrackActions, WithOptionTheArtworkOpensTheStoreAwayFromTheMainThread) {
  show();
  tests::InstantHTTP store;
  store.replies.push_back(R"({"results":[{"artistName":"MARLOW & FINCH",
                               "artistLinkUrl":"https://store.example/artist/7"}]})");
  platform_.http = &store;
  clickControl(kArtwork, NSEventModifierFlagOption);
  EXPECT_THAT(player.log(), testing::Not(Contains("command misc/actv")));
  EXPECT_THAT(store.requests, IsEmpty());
  ASSERT_EQ(workers.count(), 1U);
  workers.runAll();
  ASSERT_EQ(store.requests.size(), 1U);
  EXPECT_THAT(store.requests[0].url, testing::HasSubstr("Marlow+&+Finch"));
  EXPECT_THAT(workspaceBackend.asked, ElementsAre("open itms://store.example/artist/7?at=4p8d27M"));
}

TEST_F(TrackActions, LiveTheArtworkOpensTheStoreOnceTheArtistIsKnown) {
  show(demo::kPlaying, demo::kLiveStation);
  EXPECT_FALSE(panel->openItmsForPlayingTrack(panel.get()));
  clickControl(kArtwork);
  EXPECT_EQ(workers.count(), 0U) << "no artist, no search";
  panel->contentBeats1InfoLoader()->trackInfoUpdateForKey_withValue("track artist", "Artist");
  clickControl(kArtwork);
  EXPECT_EQ(workers.count(), 1U);
  EXPECT_EQ(player.activationCount(), 0U);
}

}  // namespace
}  // namespace virelune
