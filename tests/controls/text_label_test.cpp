#include "controls/text_label.h"

#include "platform/attributed_string.h"
#include "tests/support/widget_fixture.h"

namespace virelune {
namespace {

using platform::NSColor;
using platform::NSEvent;
using platform::NSMakeRect;
using testing::ElementsAre;
using tests::DrawingStep;

class TextLabel : public tests::WidgetFixture {
 protected:
  /// Draws the label into the canvas and answers the steps that are texts.
  std::vector<DrawingStep> drawnTexts() {
    tests::RecordingCanvas canvas;
    label->displayRect(canvas, label->bounds());
    std::vector<DrawingStep> texts;
    for (const auto& step : canvas.steps()) {
      if (step.kind == DrawingStep::Kind::text) texts.push_back(step);
    }
    return texts;
  }

  std::shared_ptr<VLTextLabel> label = platform::make<VLTextLabel>(NSMakeRect(7, 9, 100, 20));
};

TEST_F(TextLabel, LineIsCentredInTheInsetArea) {
  label->setText("short");
  label->setTextFont(platform::NSFont{12});  // lines are 15 high
  const auto texts = drawnTexts();
  ASSERT_EQ(texts.size(), 1U);
  EXPECT_DOUBLE_EQ(texts[0].rect.origin.x, 2);
  EXPECT_DOUBLE_EQ(texts[0].rect.origin.y, 2.5);
  EXPECT_DOUBLE_EQ(texts[0].rect.size.width, 96);
  EXPECT_DOUBLE_EQ(texts[0].rect.size.height, 15);
  EXPECT_EQ(texts[0].options, 33U);
}

TEST_F(TextLabel, TextTooHighTakesTheWholeAreaAndIsTruncatedThere) {
  label->setFrameSize({100, 40});
  label->setText(std::string(48, 'x'));  // three lines of 16 characters
  label->setTextFont(platform::NSFont{12});
  const auto texts = drawnTexts();
  ASSERT_EQ(texts.size(), 1U);
  EXPECT_DOUBLE_EQ(texts[0].rect.origin.y, 0.8);
  EXPECT_DOUBLE_EQ(texts[0].rect.size.height, 38.4);
}

TEST_F(TextLabel, WithoutTextOnlyTheBackgroundIsDrawn) {
  label->setBackgroundColor(NSColor::grayColor());
  for (const auto& text : {std::optional<std::string>(), std::optional<std::string>("")}) {
    label->setText(text);
    tests::RecordingCanvas canvas;
    label->displayRect(canvas, NSMakeRect(10, 0, 5, 50));
    ASSERT_EQ(canvas.steps().size(), 1U);
    EXPECT_EQ(canvas.steps()[0].color, NSColor::grayColor());
    EXPECT_EQ(canvas.steps()[0].rect, NSMakeRect(10, 0, 5, 20));
    EXPECT_FALSE(label->drawTextInRect(label->bounds()));
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
  const NSEvent escape{.type = platform::NSEventType::keyDown,
                       .locationInWindow = {},
                       .clickCount = 0,
                       .modifierFlags = 0,
                       .keyCode = 53};
  label->enterFullScreenMode();
  label->keyDown(&escape);
  EXPECT_EQ(parent->keys, 1);
  EXPECT_TRUE(label->isInFullScreenMode());

  label->setEscKeyEndsFullscreenMode(true);
  NSEvent other = escape;
  other.keyCode = 36;
  label->keyDown(&other);
  EXPECT_EQ(parent->keys, 2);
  label->keyDown(&escape);
  EXPECT_EQ(parent->keys, 2);
  EXPECT_FALSE(label->isInFullScreenMode());
  label->keyDown(&escape);
  EXPECT_EQ(parent->keys, 3);
}

}  // namespace
}  // namespace virelune
