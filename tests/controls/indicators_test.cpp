#include "controls/progress_indicator.h"

#include <limits>

#include "controls/rating_indicator.h"
#include "tests/controls/control_fixture.h"
#include "widget/constants.h"

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
      {1,
       "\nfill 0 3.5 1.5 7 grey 1/1\nfill 1.5 3.5 298.5 7 grey 1/0.5"
       "\nfill 0 0 2.33333 14 grey 1/1"},
      {0, "\nfill 0 3.5 300 7 grey 1/0.5\nfill 0 0 2.33333 14 grey 1/1"},
      {300, "\nfill 0 3.5 450 7 0 3.5 300 7 grey 1/1\nfill 447.667 0 2.33333 14 0 0 0 0 grey 1/1"}};
  for (const auto& [value, steps] : table) {
    indicator->setNowValue(value);
    EXPECT_EQ(drawn(), steps);
  }
  EXPECT_EQ(indicator->drawProgressRightRect().size.width, -150);
  indicator->setFrameSize({0, 14});
  EXPECT_EQ(indicator->nowValueFromPoint({5, 6}), 0);
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
  const platform::NSEvent pressWithoutClick{};
  indicator->mouseDown(&pressWithoutClick);
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
  mouse(leftMouseDragged, 90);
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 1U);
  indicator->removeFromSuperview();
  window->cancelMouseTracking();
  indicator = nullptr;
  EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 0U);
}

class RatingIndicator : public tests::IndicatorFixture<VLRatingIndicator> {
 protected:
  RatingIndicator() : IndicatorFixture(NSMakeRect(79, 10, 65, 12)) {}

  double valueAfterClickAt(double x) {
    mouse(leftMouseDown, x);
    mouse(leftMouseUp, x);
    return values.back();
  }
  /// The cells as they are drawn: Full, Half, Dot, Empty (full, of a computed rating).
  std::string cells() const {
    std::string all;
    for (std::size_t i = 0; i < 5; ++i) {
      const std::string place = ' ' + std::to_string(13 * i) + " 0 13 12";
      for (const char* name : {"Full", "Half", "Dot", "Empty"}) {
        const auto step = "\nVLImageRatingStar" + std::string(name) + place;
        if (drawn().find(step) != std::string::npos) all += name[0];
      }
    }
    return all;
  }
};

TEST_F(RatingIndicator, ClickRatesToTheNearestHalfStarAndAtTheVeryLeftClears) {
  for (const auto& [x, value] : {std::pair(3.25, 10), {3.2, 0}, {61.75, 100}, {61.7, 90}}) {
    EXPECT_EQ(valueAfterClickAt(x), value) << x;
  }
  for (const auto& [value, rounded] :
       {std::pair(INT64_MIN, 0), {14, 10}, {15, 20}, {INT64_MAX, 100}}) {
    indicator->setNowValueImmediately(value);
    EXPECT_EQ(indicator->contentNowValue(), rounded) << value;
  }
  indicator->setFrameSize({2, 12});
  EXPECT_EQ(valueAfterClickAt(0.99), 0);
  EXPECT_EQ(valueAfterClickAt(1), 50);
}

TEST_F(RatingIndicator, DragFollowsThePointerBeyondTheEndsAndRatesAtTheRelease) {
  indicator->setRatingType(VLRatingTypeComputed);
  const platform::NSEvent pressWithoutClick{};
  indicator->mouseDown(&pressWithoutClick);
  EXPECT_EQ(indicator->ratingType(), VLRatingTypeComputed);
  mouse(leftMouseDown, 30);
  EXPECT_EQ(indicator->ratingType(), VLRatingTypeUser);
  EXPECT_FALSE(indicator->setNowValue(20));
  EXPECT_EQ(indicator->nowValue(), 50);
  mouse(leftMouseDragged, 500);
  EXPECT_EQ(indicator->nowValue(), 100);
  mouse(leftMouseDragged, -70);
  EXPECT_TRUE(values.empty());
  mouse(leftMouseUp, -70);
  EXPECT_THAT(values, ElementsAre(0));
  EXPECT_TRUE(indicator->setNowValue(20));
  target = nullptr;
  mouse(leftMouseUp, 30);
}

TEST_F(RatingIndicator, CellsAreFullHalfOrDotsAndFullOnesTellWhoRated) {
  const std::tuple<std::int64_t, std::int64_t, const char*> table[] = {
      {VLRatingTypeUser, 0, "DDDDD"},
      {VLRatingTypeUser, 30, "FHDDD"},
      {VLRatingTypeUser, 100, "FFFFF"},
      {VLRatingTypeComputed, 100, "EEEEE"},
      {VLRatingTypeUnknown, 90, "EEEEH"}};
  for (const auto& [type, value, cells] : table) {
    indicator->setRatingType(type);
    indicator->setNowValue(value);
    EXPECT_EQ(this->cells(), cells);
  }
}

}  // namespace
}  // namespace virelune
