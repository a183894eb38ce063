#include "tests/track/track_fixture.h"
#include "widget/constants.h"

namespace virelune {
namespace {

using TrackLayout = tests::TrackFixture;

TEST_F(TrackLayout, PutsEveryControlInItsPlaceInItsLookFromTheArtworkBelowToTheTimeAbove) {
  show(demo::statePaused, 6);
  player.setPosition(46.75);
  panel->update(panel.get());
  EXPECT_EQ(tests::portrait(*panel->view()), R"(
fill 0 0 320 64 grey 0/0
cover 6 9 50 50 round 3
fill 59 25 191 20 grey 0/0
Copper Wire 62.82 25.4 183.36 19.2 label size 16 left
fill 59 45 258 19 grey 0/0
Low Orbit Parade — Signals for Small Rooms 64.16 45.4 247.68 19.2 64.16 45.4 247.68 18.6 label size 12 left
VLImageControllerNext 292 27 16 16 alpha 0.5
VLImageControllerPlay 272 27 16 16 alpha 0.5
VLImageControllerPrevious 252 27 16 16 alpha 0.5
fill 0 0 320 7 grey 0/0
fill 0 -3.5 80 7 0 0 80 3.5 grey 0.5/1
fill 80 -3.5 240 7 80 0 240 3.5 grey 0.5/0.5
fill 77.6667 -7 2.33333 14 77.6667 0 2.33333 7 grey 0.5/1
VLImageLoveOn 64 10 11 11 alpha 0.5
fill 79 10 65 12 alpha 0.5 grey 0/0
VLImageRatingStarFull 79 10 13 12 alpha 0.5
VLImageRatingStarFull 92 10 13 12 alpha 0.5
VLImageRatingStarFull 105 10 13 12 alpha 0.5
VLImageRatingStarHalf 118 10 13 12 alpha 0.5
VLImageRatingStarDot 131 10 13 12 alpha 0.5
fill 240 8 80 15 grey 0/0
00:46 | 3:07 241.6 9.25 76.8 12.5 label size 10 equal digits centred)");
}

TEST_F(TrackLayout, LeavesOutWhatIsMissingAndWorksWithoutIt) {
  class Bare : public VLTrackViewController {
    platform::NSRect preparedViewFrame() override { return platform::NSMakeRect(0, 0, 500, 64); }
    std::optional<platform::NSFont> preparedNameTextLabelFont() const override { return {}; }
    std::optional<platform::NSColor> preparedTimeTextLabelTextColor() const override { return {}; }
  };
  for (const char* name : {VLImageControllerNext, VLImageControllerPrevious, VLImageLoveOff}) {
    graphics.hideImage(name);
  }
  startPlayer();
  const auto bare = platform::make<Bare>();
  EXPECT_EQ(player.requestCount(), 0U) << "asked only once it is shown";
  EXPECT_EQ(bare->view()->subviews().size(), 5U);
  EXPECT_EQ(bare->contentPlayButton()->image(), nullptr);
  EXPECT_EQ(bare->contentProgressIndicator()->frame(), platform::NSMakeRect(0, -7, 500, 14));
  window->setContentView(bare->view());
  window->setVisible(true);
  clock.advance(2);
  EXPECT_NE(bare->contentPlayButton()->image(), nullptr);
  EXPECT_FALSE(bare->updateNameTextLabel());
  EXPECT_FALSE(bare->updateTimeTextLabel());
  EXPECT_FALSE(bare->updateLoveButton());
}

}  // namespace
}  // namespace virelune
