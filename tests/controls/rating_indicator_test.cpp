#include "controls/rating_indicator.h"

#include "tests/support/widget_fixture.h"
#include "widget/constants.h"

namespace virelune {
namespace {

using platform::NSEventType;
using platform::NSMakeRect;
using testing::ElementsAre;
using testing::IsEmpty;

/// Writes down the rating at each action.
class Target : public platform::NSObject {
 public:
  bool rated(platform::NSObject* sender) {
    values.push_back(dynamic_cast<VLRatingIndicator*>(sender)->nowValue());
    return true;
  }
  std::vector<std::int64_t> values;
};

class RatingIndicator : public tests::WidgetFixture {
 protected:
  RatingIndicator() {
    root->addSubview(indicator);
    window->setContentView(root);
    indicator->setTarget(target);
    indicator->setAction(&Target::rated);
  }
  void mouse(NSEventType type, double x) {
    sendMouse(type, {indicator->frame().origin.x + x, indicator->frame().origin.y + 6});
  }
  std::int64_t valueAfterClickAt(double x) {
    mouse(NSEventType::leftMouseDown, x);
    mouse(NSEventType::leftMouseUp, x);
    return target->values.back();
  }
  std::vector<tests::DrawingStep> drawn() {
    tests::RecordingCanvas canvas;
    indicator->displayRect(canvas, indicator->bounds());
    auto steps = canvas.steps();
    steps.erase(steps.begin());  // the clear background
    return steps;
  }
  std::vector<std::string> cells() {
    tests::RecordingCanvas canvas;
    indicator->displayRect(canvas, indicator->bounds());
    return canvas.images();
  }

  std::shared_ptr<platform::NSView> root =
      platform::make<platform::NSView>(NSMakeRect(0, 0, 320, 64));
  std::shared_ptr<VLRatingIndicator> indicator =
      platform::make<VLRatingIndicator>(NSMakeRect(79, 10, 65, 12));
  std::shared_ptr<Target> target = platform::make<Target>();
};

TEST_F(RatingIndicator, ValuesRoundToHalfStarsWithinTheScale) {
  const std::pair<std::int64_t, std::int64_t> table[] = {
      {-5, 0},  {4, 0},    {5, 10},    {14, 10},   {15, 20},       {44, 40},        {45, 50},
      {94, 90}, {95, 100}, {104, 100}, {100, 100}, {INT64_MIN, 0}, {INT64_MAX, 100}};
  for (const auto& [value, rounded] : table) {
    EXPECT_TRUE(indicator->setNowValueImmediately(value));
    EXPECT_EQ(indicator->contentNowValue(), rounded) << value;
  }
  indicator->setContentNowValue(-1);
  EXPECT_EQ(indicator->nowValue(), 0);
  indicator->setContentNowValue(101);
  EXPECT_EQ(indicator->nowValue(), 100);
}

TEST_F(RatingIndicator, ClickRatesToTheNearestHalfStar) {
  EXPECT_EQ(valueAfterClickAt(3.25), 10);
  EXPECT_EQ(valueAfterClickAt(3.2), 0);
  EXPECT_EQ(valueAfterClickAt(61.75), 100);
  EXPECT_EQ(valueAfterClickAt(61.7), 90);
}

TEST_F(RatingIndicator, ClickAtTheVeryLeftClearsTheRating) {
  indicator->setFrameSize({2, 12});
  EXPECT_EQ(valueAfterClickAt(0.99), 0);
  EXPECT_EQ(valueAfterClickAt(1), 50);
  indicator->setFrameSize({0.9, 12});
  EXPECT_EQ(indicator->nowValueFromPoint({5, 6}), 0);
}

TEST_F(RatingIndicator, DragFollowsThePointerBeyondTheEndsAndRatesAtTheRelease) {
  indicator->setRatingType(VLRatingTypeComputed);
  mouse(NSEventType::leftMouseDown, 30);
  EXPECT_EQ(indicator->ratingType(), VLRatingTypeUser);
  EXPECT_EQ(indicator->nowValue(), 50);
  EXPECT_FALSE(indicator->setNowValue(20));
  mouse(NSEventType::leftMouseDragged, 500);
  EXPECT_EQ(indicator->nowValue(), 100);
  mouse(NSEventType::leftMouseDragged, -70);
  EXPECT_EQ(indicator->nowValue(), 0);
  EXPECT_THAT(target->values, IsEmpty());
  mouse(NSEventType::leftMouseUp, -70);
  EXPECT_THAT(target->values, ElementsAre(0));
  EXPECT_TRUE(indicator->setNowValue(20));
}

TEST_F(RatingIndicator, CellsAreFullHalfOrDotsAndFullOnesTellWhoRated) {
  const std::string full = VLImageRatingStarFull;
  const std::string half = VLImageRatingStarHalf;
  const std::string dot = VLImageRatingStarDot;
  const std::string computed = VLImageRatingStarEmpty;
  indicator->setRatingType(VLRatingTypeUser);
  EXPECT_THAT(cells(), ElementsAre(dot, dot, dot, dot, dot));
  indicator->setNowValue(10);
  EXPECT_THAT(cells(), ElementsAre(half, dot, dot, dot, dot));
  indicator->setNowValue(30);
  EXPECT_THAT(cells(), ElementsAre(full, half, dot, dot, dot));
  indicator->setNowValue(100);
  EXPECT_THAT(cells(), ElementsAre(full, full, full, full, full));
  indicator->setRatingType(VLRatingTypeComputed);
  EXPECT_THAT(cells(), ElementsAre(computed, computed, computed, computed, computed));
  indicator->setRatingType(VLRatingTypeUnknown);
  indicator->setNowValue(90);
  EXPECT_THAT(cells(), ElementsAre(computed, computed, computed, computed, half));
}

TEST_F(RatingIndicator, CellsTileTheIndicatorAndAMissingImageLeavesAGap) {
  graphics.hideImage(VLImageRatingStarHalf);
  indicator->setNowValue(30);
  const auto steps = drawn();
  ASSERT_EQ(steps.size(), 4U);
  EXPECT_EQ(steps[0].rect, NSMakeRect(0, 0, 13, 12));
  EXPECT_EQ(steps[1].rect, NSMakeRect(26, 0, 13, 12));
  EXPECT_EQ(indicator->drawRatingRectAtIndex(-1), platform::NSZeroRect);
  EXPECT_EQ(indicator->drawRatingImageAtIndex(-1), nullptr);
}

TEST_F(RatingIndicator, ActionNeedsATargetThatRespondsToIt) {
  indicator->setTarget(platform::make<platform::NSView>());
  EXPECT_FALSE(indicator->performTargetAction(nullptr));
  indicator->setTarget(target);
  indicator->setAction({});
  EXPECT_FALSE(indicator->performTargetAction(nullptr));
  indicator->setAction(&Target::rated);
  target = nullptr;
  EXPECT_FALSE(indicator->performTargetAction(nullptr));
}

TEST(RatingDescription, CountsWholeAndHalfStars) {
  const std::pair<std::int64_t, const char*> table[] = {
      {-1, "0"},  {0, "0"},  {9, "0"},   {10, "½"},  {11, "0"}, {20, "1"},
      {30, "1½"}, {55, "2"}, {90, "4½"}, {100, "5"}, {110, "5"}};
  for (const auto& [value, text] : table) {
    EXPECT_EQ(vl_descriptionFromRatingValue(value), text) << value;
  }
}

}  // namespace
}  // namespace virelune
