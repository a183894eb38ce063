#include "controls/text_label.h"

#include "tests/support/widget_fixture.h"

namespace virelune {
namespace {

using platform::NSColor;
using platform::NSEvent;
using platform::NSMakeRect;

class TextLabel : public tests::WidgetFixture {
 protected:
  std::vector<tests::DrawingStep> drawn(platform::NSRect rect) const {
    tests::RecordingCanvas canvas;
    label->displayRect(canvas, rect);
    return canvas.steps();
  }

  std::shared_ptr<VLTextLabel> label = platform::make<VLTextLabel>(NSMakeRect(7, 9, 100, 20));
};

TEST_F(TextLabel, LineIsCentredInTheInsetAreaAndTextTooHighTakesItWhole) {
  label->setTextFont(platform::NSFont{12});  // lines are 15 high
  label->setText("short");
  const auto line = drawn(label->bounds()).back();
  EXPECT_EQ(line.rect.origin.x, 2);
  EXPECT_DOUBLE_EQ(line.rect.origin.y, 2.5);
  EXPECT_DOUBLE_EQ(line.rect.size.height, 15);
  EXPECT_EQ(line.options, 33U);
  label->setFrameSize({100, 40});
  label->setText(std::string(48, 'x'));  // three lines of 16 characters
  const auto high = drawn(label->bounds()).back().rect;
  EXPECT_DOUBLE_EQ(high.origin.y, 0.8);
  EXPECT_DOUBLE_EQ(high.size.height, 38.4);
}

TEST_F(TextLabel, WithoutTextOnlyTheBackgroundIsDrawn) {
  label->setBackgroundColor(NSColor::grayColor());
  for (const auto& text : {std::optional<std::string>(), std::optional<std::string>("")}) {
    label->setText(text);
    const auto steps = drawn(NSMakeRect(10, 0, 5, 50));
    ASSERT_EQ(steps.size(), 1U);
    EXPECT_EQ(steps[0].color, NSColor::grayColor());
    EXPECT_EQ(steps[0].rect, NSMakeRect(10, 0, 5, 20));
  }
}

class KeyCatcher : public platform::NSView {
 public:
  void keyDown(const NSEvent*) override { ++keys; }
  int keys = 0;
};

TEST_F(TextLabel, EscapeEndsFullScreenModeOnlyWhenAskedTo) {
  const auto parent = platform::make<KeyCatcher>();
  parent->addSubview(label);
  NSEvent key{};
  key.type = platform::NSEventType::keyDown;
  const auto press = [&](std::uint16_t code) {
    key.keyCode = code;
    label->keyDown(&key);
    return parent->keys;
  };
  constexpr std::uint16_t escape = 53, returnKey = 36;
  label->enterFullScreenMode();
  EXPECT_EQ(press(escape), 1);
  EXPECT_TRUE(label->isInFullScreenMode());
  label->setEscKeyEndsFullscreenMode(true);
  EXPECT_EQ(press(returnKey), 2);
  EXPECT_EQ(press(escape), 2);
  EXPECT_FALSE(label->isInFullScreenMode());
  EXPECT_EQ(press(escape), 3);
}

}  // namespace
}  // namespace virelune
