#include "controls/progress_indicator.h"

#include <limits>

#include "tests/support/widget_fixture.h"

namespace virelune {
namespace {

using platform::NSEventType;
using platform::NSMakeRect;
using testing::ElementsAre;
using testing::IsEmpty;

/// Writes down the value at each action.
class Target : public platform::NSObject {
 public:
  bool sought(platform::NSObject* sender) {
    values.push_back(dynamic_cast<VLProgressIndicator*>(sender)->nowValue());
    return false;
  }
  std::vector<double> values;
};

class ProgressIndicator : public tests::WidgetFixture {
 protected:
  ProgressIndicator() {
    root->addSubview(indicator);
    window->setContentView(root);
    indicator->setTarget(target);
    indicator->setAction(&Target::sought);
    indicator->setMaxValue(200);
  }
  /// Sends a mouse event at an x of the indicator.
  void mouse(NSEventType type, double x) {
    sendMouse(type, {indicator->frame().origin.x + x, indicator->frame().origin.y + 7});
  }
  std::vector<tests::DrawingStep> drawn() {
    tests::RecordingCanvas canvas;
    indicator->displayRect(canvas, indicator->bounds());
    auto steps = canvas.steps();
    steps.erase(steps.begin());  // the clear background
    return steps;
  }

  std::shared_ptr<platform::NSView> root =
      platform::make<platform::NSView>(NSMakeRect(0, 0, 400, 64));
  std::shared_ptr<VLProgressIndicator> indicator =
      platform::make<VLProgressIndicator>(NSMakeRect(10, 20, 300, 14));
  std::shared_ptr<Target> target = platform::make<Target>();
};

TEST_F(ProgressIndicator, BarAndKnobFollowTheValue) {
  indicator->setNowValue(50);
  EXPECT_EQ(indicator->drawProgressLeftRect(), NSMakeRect(0, 3.5, 75, 7));
  EXPECT_EQ(indicator->drawProgressRightRect(), NSMakeRect(75, 3.5, 225, 7));
  const auto knob = indicator->drawProgressCenterRect();
  EXPECT_NEAR(knob.origin.x, 72.6667, 1e-3);
  EXPECT_NEAR(knob.size.width, 2.3333, 1e-3);
  EXPECT_EQ(knob.size.height, 14);

  const auto steps = drawn();
  ASSERT_EQ(steps.size(), 3U);
  EXPECT_EQ(steps[0].color, platform::NSColor::whiteColor());
  EXPECT_EQ(steps[1].color, platform::NSColor::whiteColor().colorWithAlphaComponent(0.5));
  EXPECT_EQ(steps[2].rect, knob);
}

TEST_F(ProgressIndicator, AtTheStartTheKnobStandsAtTheLeftEdge) {
  const auto steps = drawn();
  ASSERT_EQ(steps.size(), 2U);
  EXPECT_EQ(steps[1].rect.origin, (platform::NSPoint{0, 0}));
}

TEST_F(ProgressIndicator, BeyondTheEndNothingRemainsToBeDrawn) {
  indicator->setNowValueImmediately(300);
  EXPECT_EQ(indicator->nowValue(), 300);
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
  EXPECT_THAT(target->values, IsEmpty());
}

TEST_F(ProgressIndicator, ClickSeeksAtThePressAndAtTheRelease) {
  mouse(NSEventType::leftMouseDown, 75);
  EXPECT_THAT(target->values, ElementsAre(50));
  mouse(NSEventType::leftMouseUp, 75);
  EXPECT_THAT(target->values, ElementsAre(50, 50));
}

TEST_F(ProgressIndicator, DragSeeksWheneverItRests) {
  mouse(NSEventType::leftMouseDown, 30);
  for (int i = 1; i <= 5; ++i) {
    mouse(NSEventType::leftMouseDragged, 30 * i);
    clock.advance(0.1);
  }
  EXPECT_THAT(target->values, ElementsAre(20));
  clock.advance(0.11);
  EXPECT_THAT(target->values, ElementsAre(20, 100));
  clock.advance(1);
  EXPECT_EQ(target->values.size(), 2U);
  mouse(NSEventType::leftMouseDragged, 1000);
  mouse(NSEventType::leftMouseUp, 1000);
  clock.advance(1);
  EXPECT_THAT(target->values, ElementsAre(20, 100, 200));
}

TEST_F(ProgressIndicator, PointsBeyondTheEndsGiveTheEnds) {
  EXPECT_EQ(indicator->nowValueFromPoint({0, 7}), 0);
  EXPECT_EQ(indicator->nowValueFromPoint({-50, 7}), 0);
  EXPECT_EQ(indicator->nowValueFromPoint({300, -99}), 200);
  EXPECT_EQ(indicator->nowValueFromPoint({301, 7}), 200);
  indicator->setFrameSize({0, 14});
  EXPECT_EQ(indicator->nowValueFromPoint({5, 7}), 0);
}

TEST_F(ProgressIndicator, PositionsDoNotDisturbTheUsersDrag) {
  mouse(NSEventType::leftMouseDown, 75);
  EXPECT_FALSE(indicator->setNowValue(10));
  EXPECT_EQ(indicator->nowValue(), 50);
  mouse(NSEventType::leftMouseUp, 75);
  EXPECT_TRUE(indicator->setNowValue(10));
  EXPECT_EQ(indicator->nowValue(), 10);
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
