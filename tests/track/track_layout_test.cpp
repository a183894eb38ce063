#include "controls/view.h"
#include "tests/track/track_fixture.h"
#include "widget/constants.h"

namespace virelune {
namespace {

using testing::ElementsAre;
using TrackLayout = tests::TrackFixture;

TEST_F(TrackLayout, HoldsTenControlsInTheirStackingOrder) {
  const auto created = platform::make<VLTrackViewController>();
  const auto& controls = created->view()->subviews();
  ASSERT_EQ(controls.size(), 10U);
  EXPECT_EQ(controls[0], created->contentArtworkButton());
  EXPECT_EQ(controls[1], created->contentNameTextLabel());
  EXPECT_EQ(controls[2], created->contentArtistTextLabel());
  EXPECT_EQ(controls[4], created->contentPlayButton());
  EXPECT_EQ(controls[6], created->contentProgressIndicator());
  EXPECT_EQ(controls[7], created->contentLoveButton());
  EXPECT_EQ(controls[8], created->contentRatingIndicator());
  EXPECT_EQ(controls[9], created->contentTimeTextLabel());
  EXPECT_EQ(created->contentPlayButton()->image(), nullptr) << "it comes with the first refresh";
  EXPECT_EQ(player.requestCount(), 0U);
}

TEST_F(TrackLayout, ShowsATrackOnceItIsPainted) {
  show(demo::kPlaying, 6);
  EXPECT_THAT(painted(),
              ElementsAre("cover", "Copper Wire", "Low Orbit Parade — Signals for Small Rooms",
                          VLImageControllerNext, VLImageControllerPause, VLImageControllerPrevious,
                          VLImageLoveOn, VLImageRatingStarFull, VLImageRatingStarFull,
                          VLImageRatingStarFull, VLImageRatingStarHalf, VLImageRatingStarDot,
                          "00:00 | 3:07"));
}

TEST_F(TrackLayout, TheBarIsAsWideAsTheRootView) {
  class Wide : public VLTrackViewController {
    platform::NSRect preparedViewFrame() override { return platform::NSMakeRect(0, 0, 500, 64); }
  };
  EXPECT_EQ(platform::make<Wide>()->contentProgressIndicator()->frame(),
            platform::NSMakeRect(0, -7, 500, 14));
}

TEST_F(TrackLayout, LeavesOutWhatIsMissingAndWorksWithoutIt) {
  class Bare : public VLTrackViewController {
    std::optional<platform::NSFont> preparedNameTextLabelFont() const override { return {}; }
    std::optional<platform::NSColor> preparedTimeTextLabelTextColor() const override { return {}; }
  };
  for (const char* name : {VLImageControllerNext, VLImageControllerPrevious, VLImageLoveOff}) {
    graphics.hideImage(name);
  }
  startPlayer();
  const auto bare = platform::make<Bare>();
  EXPECT_EQ(bare->view()->subviews().size(), 5U);
  EXPECT_EQ(bare->contentNameTextLabel(), nullptr);
  EXPECT_EQ(bare->contentTimeTextLabel(), nullptr);
  EXPECT_EQ(bare->contentLoveButton(), nullptr);
  window->setContentView(bare->view());
  window->setVisible(true);
  clock.advance(2);
  EXPECT_NE(bare->contentPlayButton()->image(), nullptr);
  EXPECT_FALSE(bare->updateNameTextLabel());
  EXPECT_FALSE(bare->updateTimeTextLabel());
  EXPECT_FALSE(bare->updateLoveButton());
}

TEST_F(TrackLayout, WithoutARootViewThereAreNoControls) {
  class Viewless : public VLTrackViewController {
    std::shared_ptr<platform::NSView> preparedView() override { return nullptr; }
  };
  startPlayer();
  const auto viewless = platform::make<Viewless>();
  EXPECT_EQ(viewless->contentArtworkButton(), nullptr);
  EXPECT_EQ(viewless->preparedProgressIndicatorFrame(), platform::NSZeroRect);
  EXPECT_FALSE(viewless->preparePlayButton());
  player.clearLog();
  EXPECT_TRUE(viewless->update(viewless.get()));
  EXPECT_EQ(player.requestCount(), 1U) << "is it the live station";
}

}  // namespace
}  // namespace virelune
