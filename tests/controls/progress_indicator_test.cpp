#include "controls/progress_indicator.h"

#include <limits>

#include "tests/controls/control_fixture.h"

namespace virelune {
namespace {

using platform::NSEventType;
using platform::NSMakeRect;
using testing::ElementsAre;
using testing::IsEmpty;

class ProgressIndicator : public tests::IndicatorFixture<VLProgressIndicator> {
 protected:
  ProgressIndicator() : IndicatorFixture(NSMakeRect(10, 20, 300, 14)) {
    indicator->setMaxValue(200);
  }
};

TEST_F(ProgressIndicator, BarAndKnobFollowTheValueEvenBeyondTheEnd) {
  indicator->setNowValue(50);
  const auto steps = drawn();
  ASSERT_EQ(steps.size(), 3U);
  EXPECT_EQ(steps[0].rect, NSMakeRect(0, 3.5, 75, 7));
  EXPECT_EQ(steps[0].color, platform::NSColor::whiteColor());
  EXPECT_EQ(steps[1].rect, NSMakeRect(75, 3.5, 225, 7));
  EXPECT_EQ(steps[1].color, platform::NSColor::whiteColor().colorWithAlphaComponent(0.5));
  EXPECT_NEAR(steps[2].rect.origin.x, 72.6667, 1e-3);
  EXPECT_NEAR(steps[2].rect.size.width, 2.3333, 1e-3);
  indicator->setNowValue(0);
  EXPECT_EQ(drawn().back().rect.origin, (platform::NSPoint{0, 0}));
  indicator->setNowValueImmediately(300);
  EXPECT_EQ(indicator->drawProgressLeftRect().size.width, 450);
  EXPECT_EQ(indicator->drawProgressRightRect().size.width, -150);
  EXPECT_EQ(drawn().size(), 2U);
}

TEST_F(ProgressIndicator, WithoutAScaleItIgnoresTheMouseAndShowsNoKnob) {
  for (const double bad : {-3.0, 0.0, std::numeric_limits<double>::quiet_NaN()}) {
    indicator->setMaxValue(bad);
    EXPECT_EQ(indicator->contentMaxValue(), 0);
    mouse(NSEventType::leftMouseDown, 100);
    mouse(NSEventType::leftMouseDragged, 120);
    EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 0U);
    mouse(NSEventType::leftMouseUp, 120);
    EXPECT_EQ(drawn().size(), 1U);
  }
  EXPECT_THAT(values, IsEmpty());
}

TEST_F(ProgressIndicator, DragSeeksWheneverItRests) {
  mouse(NSEventType::leftMouseDown, 30);
  for (int i = 1; i <= 5; ++i) {
    mouse(NSEventType::leftMouseDragged, 30 * i);
    clock.advance(0.1);
  }
  EXPECT_THAT(values, ElementsAre(20));
  clock.advance(0.11);
  EXPECT_THAT(values, ElementsAre(20, 100));
  clock.advance(1);
  EXPECT_EQ(values.size(), 2U);
  mouse(NSEventType::leftMouseDragged, -50);
  EXPECT_EQ(indicator->nowValue(), 0);
  mouse(NSEventType::leftMouseDragged, 1000);
  mouse(NSEventType::leftMouseUp, 1000);
  clock.advance(1);
  EXPECT_THAT(values, ElementsAre(20, 100, 200));
}

TEST_F(ProgressIndicator, ClickSeeksAtPressAndReleaseUndisturbedByPositionsInBetween) {
  mouse(NSEventType::leftMouseDown, 75);
  EXPECT_THAT(values, ElementsAre(50));
  EXPECT_FALSE(indicator->setNowValue(10));
  mouse(NSEventType::leftMouseUp, 75);
  EXPECT_THAT(values, ElementsAre(50, 50));
  EXPECT_TRUE(indicator->setNowValue(10));
}

TEST_F(ProgressIndicator, PendingTimerAndTheTargetMayGoBeforeEachOther) {
  mouse(NSEventType::leftMouseDown, 75);
  mouse(NSEventType::leftMouseDragged, 80);
  target = nullptr;
  clock.advance(1);
  EXPECT_FALSE(indicator->performTargetAction(nullptr));
  mouse(NSEventType::leftMouseDragged, 90);
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 1U);
  indicator->removeFromSuperview();
  window->cancelMouseTracking();
  indicator = nullptr;
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 0U);
}

}  // namespace
}  // namespace virelune
