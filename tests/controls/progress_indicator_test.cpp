#include "controls/progress_indicator.h"

#include <limits>

#include "tests/controls/control_fixture.h"

namespace virelune {
namespace {

using platform::NSMakeRect;
using testing::ElementsAre;
using enum platform::NSEventType;

class ProgressIndicator : public tests::IndicatorFixture<VLProgressIndicator> {
 protected:
  ProgressIndicator() : IndicatorFixture(NSMakeRect(10, 20, 300, 14)) {
    indicator->setMaxValue(200);
  }
};

TEST_F(ProgressIndicator, BarAndKnobFollowTheValueEvenBeyondTheEnd) {
  const std::tuple<double, const char*> table[] = {
      {50,
       "\nfill 0 3.5 75 7 grey 1/1\nfill 75 3.5 225 7 grey 1/0.5"
       "\nfill 72.6667 0 2.33333 14 grey 1/1"},
      {0, "\nfill 0 3.5 300 7 grey 1/0.5\nfill 0 0 2.33333 14 grey 1/1"},
      {300, "\nfill 0 3.5 450 7 0 3.5 300 7 grey 1/1\nfill 447.667 0 2.33333 14 0 0 0 0 grey 1/1"}};
  for (const auto& [value, steps] : table) {
    indicator->setNowValue(value);
    EXPECT_EQ(drawn(), steps);
  }
  EXPECT_EQ(indicator->drawProgressRightRect().size.width, -150);
}

TEST_F(ProgressIndicator, WithoutAScaleItIgnoresTheMouseAndShowsNoKnob) {
  for (const double bad : {-3.0, 0.0, std::numeric_limits<double>::quiet_NaN()}) {
    indicator->setMaxValue(bad);
    EXPECT_EQ(indicator->contentMaxValue(), 0);
    mouse(leftMouseDown, 100);
    mouse(leftMouseDragged, 120);
    EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 0U);
    mouse(leftMouseUp, 120);
    indicator->setNowValueImmediately(7);
    EXPECT_EQ(drawn(), "\nfill 0 3.5 300 7 grey 1/0.5");
  }
  EXPECT_TRUE(values.empty());
}

TEST_F(ProgressIndicator, DragSeeksWheneverItRestsAndAtItsRelease) {
  mouse(leftMouseDown, 30);
  EXPECT_FALSE(indicator->setNowValue(10)) << "positions from outside wait until the release";
  for (int i = 1; i <= 5; ++i) {
    mouse(leftMouseDragged, 30 * i);
    clock.advance(0.1);
  }
  EXPECT_THAT(values, ElementsAre(20));
  clock.advance(0.11);
  EXPECT_THAT(values, ElementsAre(20, 100));
  clock.advance(1);
  EXPECT_EQ(values.size(), 2U);
  mouse(leftMouseDragged, -50);
  EXPECT_EQ(indicator->nowValue(), 0);
  mouse(leftMouseDragged, 1000);
  mouse(leftMouseUp, 1000);
  clock.advance(1);
  EXPECT_THAT(values, ElementsAre(20, 100, 200));
  EXPECT_TRUE(indicator->setNowValue(10));
  mouse(leftMouseDragged, 30);
  mouse(leftMouseDown, 75);
  clock.advance(1);
  EXPECT_THAT(values, ElementsAre(20, 100, 200, 50)) << "a press ends what waited";
}

TEST_F(ProgressIndicator, PendingTimerAndTheTargetMayGoBeforeEachOther) {
  mouse(leftMouseDown, 75);
  mouse(leftMouseDragged, 80);
  target = nullptr;
  clock.advance(1);
  EXPECT_FALSE(indicator->performTargetAction(nullptr));
  mouse(leftMouseDragged, 90);
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 1U);
  indicator->removeFromSuperview();
  window->cancelMouseTracking();
  indicator = nullptr;
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 0U);
}

}  // namespace
}  // namespace virelune
