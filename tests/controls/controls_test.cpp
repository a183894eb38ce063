#include "controls/text_label.h"

#include <limits>

#include "controls/progress_indicator.h"
#include "controls/rating_indicator.h"
#include "platform/view/button.h"
#include "tests/controls/control_fixture.h"
#include "widget/constants.h"

namespace virelune {
namespace {

using namespace platform;

using testing::ElementsAre;
using enum platform::NSEventType;

struct Controls : tests::WidgetFixture {
  std::shared_ptr<VLTextLabel> label = make<VLTextLabel>(NSMakeRect(7, 9, 100, 20));
};

TEST_F(Controls, EveryChangeOfWhatTheyShowIsRepainted) {
  const auto frame = label->frame();
  const auto progress = make<VLProgressIndicator>(frame);
  const auto rating = make<VLRatingIndicator>(frame);
  const auto button = make<NSButton>(frame);
  const auto root = make<NSView>(NSMakeRect(0, 0, 400, 64));
  using Views = std::vector<std::shared_ptr<NSView>>;
  for (const auto& view : Views{label, progress, rating, button}) root->addSubview(view);
  window->setContentView(root);
  const auto image = make<tests::TestImage>("image", NSSize{10, 10});
  const auto mouse = [&](NSEventType type, double x) { sendMouse(type, {x, 15}); };
  const std::pair<const char*, std::function<void()>> changes[] = {
      {"background", [&] { label->setBackgroundColor(NSColor::whiteColor()); }},
      {"text", [&] { label->setText("a"); }},
      {"the same text", [&] { label->setText("a"); }},
      {"alignment", [&] { label->setTextAlignment(NSTextAlignment::right); }},
      {"text colour", [&] { label->setTextColor(NSColor::grayColor()); }},
      {"font", [&] { label->setTextFont(NSFont{20}); }},
      {"maximum", [&] { progress->setMaxValue(100); }},
      {"position", [&] { progress->setNowValue(50); }},
      {"colour of the bar", [&] { progress->setColor(NSColor::grayColor()); }},
      {"stars", [&] { rating->setNowValue(50); }},
      {"kind of stars", [&] { rating->setRatingType(VLRatingTypeUser); }},
      {"image", [&] { button->setImage(image); }},
      {"title", [&] { button->setTitle("title"); }},
      {"side", [&] { button->setAlignment(NSTextAlignment::left); }},
      {"border", [&] { button->setBordered(false); }},
      {"scaling", [&] { button->setImageScaling(NSImageScaling::proportionallyUpOrDown); }},
      {"opacity", [&] { button->setAlphaValue(0.5); }},
      {"pressed", [&] { mouse(leftMouseDown, 20); }},
      {"drawn out", [&] { mouse(leftMouseDragged, 300); }},
      {"drawn in", [&] { mouse(leftMouseDragged, 20); }},
      {"released", [&] { mouse(leftMouseUp, 20); }},
      {"hidden", [&] { button->setHidden(true); }},
      {"shown", [&] { button->setHidden(false); }}};
  for (const auto& [name, change] : changes) {
    marked.clear();
    change();
    EXPECT_THAT(marked, ElementsAre(frame)) << name;
  }
  marked.clear();
  button->setImage(image);
  button->setTitle("title");
  EXPECT_TRUE(marked.empty()) << "a button that stays as it is";
}

TEST_F(Controls, ALabelCentresItsLinesInTheInsetAreaAndCutsTextThatIsTooHigh) {
  label->setText(std::string(16, 'x'));
  label->setTextFont(NSFont{12});  // a line is 15 high and 96 wide
  label->setTextColor(NSColor::labelColor());
  label->setTextAlignment(NSTextAlignment::right);
  const std::string clear = "\nfill 0 0 100 20 grey 0/0\n";
  EXPECT_EQ(tests::portrait(*label),
            clear + std::string(16, 'x') + " 2 2.5 96 15 label size 12 right");
  label->setFrameSize({100, 40});
  label->setText(std::string(17, 'x'));
  EXPECT_THAT(tests::portrait(*label), testing::HasSubstr("x 2 5 96 30 label"));
  label->setText(std::string(48, 'x'));
  EXPECT_THAT(tests::portrait(*label), testing::HasSubstr("x 2 0.8 96 38.4 label"));
  EXPECT_THAT(tests::portrait(*label, NSMakeRect(90, 0, 50, 50)),
              testing::StartsWith("\nfill 90 0 10 40 "))
      << "of the ground what is asked";
}

TEST_F(Controls, ALabelNeedsNoFontNorColourButATextAndTellsTheWholeOfWhatItCuts) {
  label->setTextAlignment(NSTextAlignment::natural);
  label->setText("plain");
  EXPECT_THAT(tests::portrait(*label), testing::EndsWith("plain 2 1.875 96 16.25"));
  for (const auto& text : {std::optional<std::string>(), std::optional<std::string>("")}) {
    label->setText(text);
    EXPECT_EQ(tests::portrait(*label), "\nfill 0 0 100 20 grey 0/0");
    EXPECT_EQ(label->toolTip(), std::nullopt);
  }
  label->setText("It fits.");
  EXPECT_EQ(label->toolTip(), std::nullopt);
  const std::string text = "It takes two lines, and there is room for one.";
  label->setText(text);
  EXPECT_EQ(label->toolTip(), text);
  label->setFrame(NSMakeRect(0, 0, 100, 80));
  EXPECT_EQ(label->toolTip(), std::nullopt);
}

struct ProgressIndicator : tests::IndicatorFixture<VLProgressIndicator> {
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
  const NSEvent pressWithoutClick{};
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

struct RatingIndicator : tests::IndicatorFixture<VLRatingIndicator> {
  RatingIndicator() : IndicatorFixture(NSMakeRect(79, 10, 65, 12)) {}

  double valueAfterClickAt(double x) {
    mouse(leftMouseDown, x);
    mouse(leftMouseUp, x);
    return values.back();
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
  indicator->setNowValue(90);
  EXPECT_THAT(drawn(),
              testing::ContainsRegex("(VLImageRatingStarEmpty [^\n]*\n){4}VLImageRatingStarHalf"));
  const NSEvent pressWithoutClick{};
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

}  // namespace
}  // namespace virelune
