#include "tests/track/track_fixture.h"
#include "widget/constants.h"

namespace virelune {
namespace {

using testing::ElementsAre;
using TrackLayout = tests::TrackFixture;

TEST_F(TrackLayout, ShowsATrackFromTheArtworkBelowToTheTimeAbove) {
  show(demo::statePlaying, 6);
  EXPECT_THAT(painted(),
              ElementsAre("cover", "Copper Wire", "Low Orbit Parade — Signals for Small Rooms",
                          VLImageControllerNext, VLImageControllerPause, VLImageControllerPrevious,
                          VLImageLoveOn, VLImageRatingStarFull, VLImageRatingStarFull,
                          VLImageRatingStarFull, VLImageRatingStarHalf, VLImageRatingStarDot,
                          "00:00 | 3:07"));
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
