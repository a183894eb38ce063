
#include "extensions/application_paths.h"
#include "tests/track/track_fixture.h"

namespace virelune {
namespace {

using platform::NSEventModifierFlagOption;
using testing::ElementsAre;
using testing::HasSubstr;
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
      {previous, "pPlS command hook/Prev", "Paper Lanterns"}};
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
  player.clearLog();
  sendMouse(platform::NSEventType::leftMouseDown, {160, 3});
  EXPECT_EQ(asked(), "pPlS set pPos 112.5 pPlS pPos") << "half of the bar";
  EXPECT_EQ(panel->contentProgressIndicator()->nowValue(), 112.5);
  sendMouse(platform::NSEventType::leftMouseUp, {160, 3});
  player.quit();
  player.clearLog();
  for (const std::size_t control : {artwork, next, play, previous, love}) clickControl(control);
  for (const auto point : {platform::NSPoint{160, 3}, threeStars}) click(point);
  EXPECT_EQ(asked(), "") << "a player that has quit is not asked";
}

TEST_F(TrackActions, LoveAndStarsActOnTheTrackWithOptionOnItsAlbumAndShowAtOnceByTheRuleToo) {
  show(demo::statePaused, demo::trackWithoutCover);
  const auto told = [](std::int64_t rating, bool loved) {
    return std::to_string(rating) + (loved ? "+ " : "- ");
  };
  const auto state = [&] {
    const auto& track = player.currentTrack()->marks;
    const auto& album = player.albumMarks(*player.currentTrack());
    return told(track.rating, track.loved) + told(album.rating, album.loved) +
           told(panel->contentRatingIndicator()->nowValue(),
                nameOf(panel->contentLoveButton()->image()) == VLImageLoveOn);
  };
  constexpr auto option = NSEventModifierFlagOption | platform::NSEventModifierFlagShift;
  const std::tuple<const char*, std::uint64_t, const char*> steps[] = {
      {"heart", option, "0- 0+ 0- "}, {"stars", option, "0- 60+ 0- "},
      {"heart", 0, "0+ 60+ 0+ "},     {"stars", 0, "60+ 60+ 60+ "},
      {"rule", 0, "60+ 60+ 60+ "},    {"heart", 0, "50- 60+ 50- "},
      {"stars", 0, "60+ 60+ 60+ "},   {"heart", 0, "50- 60+ 50- "},
      {"heart", 0, "60+ 60+ 60+ "},   {"heart", option, "60+ 50- 60+ "},
      {"refuses", 0, "60+ 50- 60+ "}, {"heart", 0, "60+ 50- 60+ "}};
  for (const auto& [what, flags, expected] : steps) {
    const std::string step = what;
    if (step == "heart") clickControl(love, flags);
    if (step == "stars") click(threeStars, flags);
    if (step == "refuses") player.setRefusesWrites(true);
    if (step == "rule") {
      std::ofstream(*vl_applicationPreferencesURLForPlistGeneral()->filePath())
          << "<plist version=\"1.0\"><dict><key>UseAutoLove</key><true/>"
             "<key>UseAutoLoveValue</key><integer>60</integer></dict></plist>";
    }
    EXPECT_EQ(state(), expected) << what;
  }
}

TEST_F(TrackActions, TheArtworkRevealsTheTrackAndWithOptionOpensTheArtistsPageFromAWorker) {
  show();
  clickControl(artwork);
  EXPECT_EQ(asked(), "pnam pPlS command misc/actv command pTrk hook/Revl");
  player.clearLog();
  EXPECT_EQ(workers.count(), 0U);
  player.currentTrack()->albumArtist = "Various";
  http.replies = {R"({"results":[{"artistName":"MARLOW & FINCH",
                       "artistLinkUrl":"https://store.example/artist/7"}]})"};
  clickControl(artwork, NSEventModifierFlagOption);
  EXPECT_THAT(asked(), Not(HasSubstr("actv")));
  EXPECT_EQ(http.count(), 0U);
  ASSERT_EQ(workers.count(), 1U);
  workers.runAll();
  EXPECT_THAT(http.at(0).request.url, HasSubstr("Marlow+&+Finch"));
  EXPECT_THAT(workspaceBackend.asked, ElementsAre("open itms://store.example/artist/7?at=4p8d27M"));
}

}  // namespace
}  // namespace virelune
