#include "controls/text_label.h"

#include "controls/progress_indicator.h"
#include "controls/rating_indicator.h"
#include "platform/view/button.h"
#include "tests/support/widget_fixture.h"
#include "widget/constants.h"

namespace virelune {
namespace {

using platform::NSColor;
using platform::NSMakeRect;
using testing::ElementsAre;

class Controls : public tests::WidgetFixture {
 protected:
  std::shared_ptr<VLTextLabel> label = platform::make<VLTextLabel>(NSMakeRect(7, 9, 100, 20));
};

TEST_F(Controls, EveryChangeOfWhatTheyShowIsRepainted) {
  const auto frame = label->frame();
  const auto progress = platform::make<VLProgressIndicator>(frame);
  const auto rating = platform::make<VLRatingIndicator>(frame);
  const auto button = platform::make<platform::NSButton>(frame);
  const auto root = platform::make<platform::NSView>(NSMakeRect(0, 0, 400, 64));
  using Views = std::vector<std::shared_ptr<platform::NSView>>;
  for (const auto& view : Views{label, progress, rating, button}) root->addSubview(view);
  window->setContentView(root);
  const auto image = platform::make<tests::TestImage>("image", platform::NSSize{10, 10});
  const auto mouse = [&](platform::NSEventType type, double x) { sendMouse(type, {x, 15}); };
  using enum platform::NSEventType;
  const std::pair<const char*, std::function<void()>> changes[] = {
      {"background", [&] { label->setBackgroundColor(NSColor::whiteColor()); }},
      {"text", [&] { label->setText("a"); }},
      {"the same text", [&] { label->setText("a"); }},
      {"alignment", [&] { label->setTextAlignment(platform::NSTextAlignment::right); }},
      {"text colour", [&] { label->setTextColor(NSColor::grayColor()); }},
      {"font", [&] { label->setTextFont(platform::NSFont{20}); }},
      {"maximum", [&] { progress->setMaxValue(100); }},
      {"position", [&] { progress->setNowValue(50); }},
      {"colour of the bar", [&] { progress->setColor(NSColor::grayColor()); }},
      {"stars", [&] { rating->setNowValue(50); }},
      {"kind of stars", [&] { rating->setRatingType(VLRatingTypeUser); }},
      {"image", [&] { button->setImage(image); }},
      {"title", [&] { button->setTitle("title"); }},
      {"side", [&] { button->setAlignment(platform::NSTextAlignment::left); }},
      {"border", [&] { button->setBordered(false); }},
      {"scaling",
       [&] { button->setImageScaling(platform::NSImageScaling::proportionallyUpOrDown); }},
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
  label->setTextFont(platform::NSFont{12});  // a line is 15 high and 96 wide
  label->setTextColor(NSColor::labelColor());
  label->setTextAlignment(platform::NSTextAlignment::right);
  const std::string clear = "\nfill 0 0 100 20 grey 0/0\n";
  EXPECT_EQ(tests::portrait(*label),
            clear + std::string(16, 'x') + " 2 2.5 96 15 label size 12 right");
  label->setFrameSize({100, 40});
  label->setText(std::string(17, 'x'));
  EXPECT_THAT(tests::portrait(*label), testing::HasSubstr("x 2 5 96 30 label"));
  label->setText(std::string(48, 'x'));
  EXPECT_THAT(tests::portrait(*label), testing::HasSubstr("x 2 0.8 96 38.4 label"));
  tests::RecordingCanvas canvas;
  label->displayRect(canvas, NSMakeRect(90, 0, 50, 50));
  EXPECT_EQ(canvas.steps().front().rect, NSMakeRect(90, 0, 10, 40))
      << "of the ground what is asked";
  EXPECT_EQ(canvas.steps().back().options, 33U) << "wraps, and cuts the last line";
}

TEST_F(Controls, ALabelTellsTheWholeOfWhatItCuts) {
  EXPECT_EQ(label->toolTip(), std::nullopt);
  label->setText("It fits.");
  EXPECT_EQ(label->toolTip(), std::nullopt);
  const std::string text = "It takes two lines, and there is room for one.";
  label->setText(text);
  EXPECT_EQ(label->toolTip(), text);
  label->setFrame(NSMakeRect(0, 0, 100, 80));
  EXPECT_EQ(label->toolTip(), std::nullopt);
}

TEST_F(Controls, ALabelNeedsNoFontNorColourButAText) {
  label->setTextAlignment(platform::NSTextAlignment::natural);
  label->setText("plain");
  EXPECT_THAT(tests::portrait(*label), testing::EndsWith("plain 2 1.875 96 16.25"));
  label->setBackgroundColor(NSColor::grayColor());
  for (const auto& text : {std::optional<std::string>(), std::optional<std::string>("")}) {
    label->setText(text);
    EXPECT_EQ(tests::portrait(*label), "\nfill 0 0 100 20 grey 0.5/1");
  }
}

}  // namespace
}  // namespace virelune
