#include "controls/rating_indicator.h"

#include "tests/controls/control_fixture.h"
#include "widget/constants.h"

namespace virelune {
namespace {

using platform::NSEventType;
using platform::NSMakeRect;
using testing::ElementsAre;

class RatingIndicator : public tests::IndicatorFixture<VLRatingIndicator> {
 protected:
  RatingIndicator() : IndicatorFixture(NSMakeRect(79, 10, 65, 12)) {}

  double valueAfterClickAt(double x) {
    mouse(NSEventType::leftMouseDown, x);
    mouse(NSEventType::leftMouseUp, x);
    return values.back();
  }
};

TEST_F(RatingIndicator, ValuesRoundToHalfStarsWithinTheScale) {
  const std::pair<std::int64_t, std::int64_t> table[] = {
      {4, 0},    {5, 10},    {14, 10}, {15, 20},       {94, 90},
      {95, 100}, {104, 100}, {-5, 0},  {INT64_MIN, 0}, {INT64_MAX, 100}};
  for (const auto& [value, rounded] : table) {
    EXPECT_TRUE(indicator->setNowValueImmediately(value));
    EXPECT_EQ(indicator->contentNowValue(), rounded) << value;
  }
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
  EXPECT_FALSE(indicator->setNowValue(20));
  EXPECT_EQ(indicator->nowValue(), 50);
  mouse(NSEventType::leftMouseDragged, 500);
  EXPECT_EQ(indicator->nowValue(), 100);
  mouse(NSEventType::leftMouseDragged, -70);
  EXPECT_TRUE(values.empty());
  mouse(NSEventType::leftMouseUp, -70);
  EXPECT_THAT(values, ElementsAre(0));
  EXPECT_TRUE(indicator->setNowValue(20));
}

TEST_F(RatingIndicator, CellsAreFullHalfOrDotsAndFullOnesTellWhoRated) {
  const std::string full = VLImageRatingStarFull;
  const std::string half = VLImageRatingStarHalf;
  const std::string dot = VLImageRatingStarDot;
  const std::string computed = VLImageRatingStarEmpty;
  const std::tuple<std::int64_t, std::int64_t, std::vector<std::string>> table[] = {
      {VLRatingTypeUser, 0, {dot, dot, dot, dot, dot}},
      {VLRatingTypeUser, 30, {full, half, dot, dot, dot}},
      {VLRatingTypeUser, 100, {full, full, full, full, full}},
      {VLRatingTypeComputed, 100, {computed, computed, computed, computed, computed}},
      {VLRatingTypeUnknown, 90, {computed, computed, computed, computed, half}}};
  for (const auto& [type, value, cells] : table) {
    indicator->setRatingType(type);
    indicator->setNowValue(value);
    std::vector<std::string> names;
    for (const auto& step : drawn()) names.push_back(step.name);
    EXPECT_EQ(names, cells);
  }
}

TEST_F(RatingIndicator, AMissingImageLeavesAGap) {
  graphics.hideImage(VLImageRatingStarHalf);
  indicator->setNowValue(30);
  const auto steps = drawn();
  ASSERT_EQ(steps.size(), 4U);
  EXPECT_EQ(steps[1].rect, NSMakeRect(26, 0, 13, 12));
}

TEST(RatingDescription, CountsWholeAndHalfStars) {
  const std::pair<std::int64_t, const char*> table[] = {{-1, "0"},  {9, "0"},   {10, "½"},
                                                        {11, "0"},  {30, "1½"}, {55, "2"},
                                                        {90, "4½"}, {100, "5"}, {110, "5"}};
  for (const auto& [value, text] : table) {
    EXPECT_EQ(vl_descriptionFromRatingValue(value), text) << value;
  }
}

}  // namespace
}  // namespace virelune
