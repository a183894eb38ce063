#include <fstream>

#include "extensions/application_paths.h"
#include "tests/support/instant_http.h"
#include "tests/track/track_fixture.h"
#include "widget/constants.h"

namespace virelune {
namespace {

using platform::NSEventModifierFlagOption;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using tests::nameOf;

class TrackActions : public tests::TrackFixture {
 protected:
  void clickControl(std::size_t index, std::uint64_t flags = 0) {
    click(centerOf(*panel->view()->subviews().at(index)), flags);
  }
  static constexpr std::size_t artwork = 0, next = 3, play = 4, previous = 5, love = 7;
  /// The middle of the third star.
  static constexpr platform::NSPoint threeStars{79 + 39, 16};
};

TEST_F(TrackActions, TransportClicksChangeNothingUntilThePlayerSaysSo) {
  show();
  const std::tuple<std::size_t, const char*, const char*> clicks[] = {
      {play, "pPlS command hook/PlPs", "Paper Lanterns"},
      {next, "pPlS command hook/Next", "Night Bus, Upper Deck"},
      {previous, "pPlS command hook/Prev", "Paper Lanterns"},
  };
  for (const auto& [control, requests, track] : clicks) {
    player.clearLog();
    const auto shown = painted();
    clickControl(control);
    EXPECT_EQ(asked(), requests);
    EXPECT_EQ(painted(), shown);
    clock.settle();
    EXPECT_NE(painted(), shown);
    EXPECT_EQ(panel->contentNameTextLabel()->text(), track);
  }
}

TEST_F(TrackActions, ClicksAfterThePlayerHasQuitSendNothing) {
  show();
  player.quit();
  player.clearLog();
  for (const std::size_t control : {artwork, next, play, previous, love}) {
    clickControl(control);
  }
  click({160, 3});
  click(threeStars);
  EXPECT_THAT(player.log(), IsEmpty());
}

TEST_F(TrackActions, APressOnTheBarSeeksThere) {
  show(demo::statePaused);
  sendMouse(platform::NSEventType::leftMouseDown, {160, 3});
  EXPECT_EQ(player.position(), 112.5);
  EXPECT_EQ(asked(), "pPlS set pPos 112.5 pPlS pPos");
  EXPECT_EQ(panel->contentProgressIndicator()->nowValue(), 112.5);
  sendMouse(platform::NSEventType::leftMouseUp, {160, 3});
  clock.settle();
  EXPECT_EQ(panel->contentTimeTextLabel()->text(), "01:52 | 3:45");
}

TEST_F(TrackActions, LoveAndStarsActOnTheTrackAndWithOptionOnItsAlbum) {
  show(demo::statePaused, demo::trackWithoutCover);
  demo::Marks& track = player.currentTrack()->marks;
  demo::Marks& album = player.albumMarks(*player.currentTrack());

  clickControl(love, NSEventModifierFlagOption);
  EXPECT_TRUE(album.loved);
  EXPECT_FALSE(track.loved);
  click(threeStars, NSEventModifierFlagOption | platform::NSEventModifierFlagShift);
  EXPECT_EQ(album.rating, 60);
  EXPECT_EQ(track.rating, 0);
  EXPECT_EQ(panel->contentRatingIndicator()->nowValue(), 0) << "the track's stars are shown";

  clickControl(love);
  click(threeStars);
  EXPECT_TRUE(track.loved);
  EXPECT_EQ(track.rating, 60);
  EXPECT_EQ(nameOf(panel->contentLoveButton()->image()), VLImageLoveOn) << "at once";
  EXPECT_EQ(panel->contentRatingIndicator()->nowValue(), 60);
}

TEST_F(TrackActions, TheLoveRuleShowsInHeartAndStarsAtOnce) {
  std::ofstream(*vl_applicationPreferencesURLForPlistGeneral()->filePath())
      << "<plist version=\"1.0\"><dict><key>UseAutoLove</key><true/>"
         "<key>UseAutoLoveValue</key><integer>60</integer></dict></plist>";
  show(demo::statePaused, demo::trackWithoutCover);
  const auto shown = [this] {
    const std::string heart = nameOf(panel->contentLoveButton()->image());
    return (heart == VLImageLoveOn ? "loved " : "not ") +
           std::to_string(panel->contentRatingIndicator()->nowValue());
  };
  clickControl(love);
  EXPECT_EQ(shown(), "loved 60");
  clickControl(love);
  EXPECT_EQ(shown(), "not 50");
  click(threeStars);
  EXPECT_EQ(shown(), "loved 60");
  clickControl(love);
  clickControl(love, NSEventModifierFlagOption);
  EXPECT_EQ(player.albumMarks(*player.currentTrack()).rating, 60);
}

TEST_F(TrackActions, WhatThePlayerRefusesIsShownAsItReallyIs) {
  show(demo::statePaused);
  player.setPosition(10);
  player.setRefusesWrites(true);
  click(threeStars);
  clickControl(love);
  click({160, 3});
  EXPECT_EQ(panel->contentRatingIndicator()->nowValue(), 80);
  EXPECT_EQ(nameOf(panel->contentLoveButton()->image()), VLImageLoveOn);
  EXPECT_EQ(panel->contentProgressIndicator()->nowValue(), 10.0);
}

TEST_F(TrackActions, TheArtworkRevealsTheTrackInThePlayer) {
  show();
  clickControl(artwork);
  EXPECT_EQ(asked(), "pnam pPlS command misc/actv command pTrk hook/Revl");
  EXPECT_EQ(workers.count(), 0U);
}

TEST_F(TrackActions, WithOptionTheArtworkOpensTheStoreAwayFromTheMainThread) {
  show();
  player.currentTrack()->albumArtist = "Various";
  tests::InstantHTTP store;
  store.replies.push_back(R"({"results":[{"artistName":"MARLOW & FINCH",
                               "artistLinkUrl":"https://store.example/artist/7"}]})");
  platform_.http = &store;
  clickControl(artwork, NSEventModifierFlagOption);
  EXPECT_THAT(asked(), Not(HasSubstr("actv")));
  EXPECT_THAT(store.requests, IsEmpty());
  ASSERT_EQ(workers.count(), 1U);
  workers.runAll();
  ASSERT_EQ(store.requests.size(), 1U);
  EXPECT_THAT(store.requests[0].url, HasSubstr("Marlow+&+Finch"));
  EXPECT_THAT(workspaceBackend.asked, ElementsAre("open itms://store.example/artist/7?at=4p8d27M"));
}

TEST_F(TrackActions, LiveTheArtworkOpensTheStoreOnceTheArtistIsKnown) {
  show(demo::statePlaying, demo::liveStation);
  EXPECT_FALSE(panel->openItmsForPlayingTrack(panel.get()));
  clickControl(artwork);
  EXPECT_EQ(workers.count(), 0U) << "no artist, no search";
  panel->contentBeats1InfoLoader()->trackInfoUpdateForKey_withValue("track artist", "Artist");
  clickControl(artwork);
  EXPECT_EQ(workers.count(), 1U);
  EXPECT_THAT(asked(), Not(HasSubstr("actv")));
}

}  // namespace
}  // namespace virelune
