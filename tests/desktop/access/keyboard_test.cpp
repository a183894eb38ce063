#include "desktop/access/keyboard.h"

#include <gtest/gtest.h>
#include <QtCore/QCoreApplication>

#include "controls/progress_indicator.h"
#include "controls/rating_indicator.h"
#include "desktop/window/card_style.h"
#include "desktop/window/shortcuts.h"
#include "platform/platform.h"
#include "platform/view/button.h"

namespace {

using platform::NSMakeRect;

/// A widget with a button, stars and a bar, which note what is done with them.
struct OperatedWidget : platform::NSViewController {
  bool init() override {
    setView(platform::make<platform::NSView>(NSMakeRect(0, 0, 320, 64)));
    // In another order than they are read in.
    bar = add<virelune::VLProgressIndicator>(NSMakeRect(0, -7, 320, 14), "Bar",
                                             &OperatedWidget::sought);
    bar->setMaxValue(100);
    bar->setNowValue(50);
    stars = add<virelune::VLRatingIndicator>(NSMakeRect(79, 10, 65, 12), "Stars",
                                             &OperatedWidget::rated);
    button = add<platform::NSButton>(NSMakeRect(250, 40, 20, 16), "Next", &OperatedWidget::pressed);
    setPreferredContentSize({320, 64});
    return true;
  }
  template <class Control>
  std::shared_ptr<Control> add(platform::NSRect frame, const char* label,
                               bool (OperatedWidget::*action)(platform::NSObject*)) {
    auto control = platform::make<Control>(frame);
    control->setAccessibilityLabel(label);
    control->setTarget(shared_from_this());
    control->setAction(action);
    view()->addSubview(control);
    return control;
  }
  bool pressed(platform::NSObject*) {
    const auto& event = platform::current().application->currentEvent();
    done += event && (event->modifierFlags & platform::NSEventModifierFlagOption) != 0 ? "P" : "p";
    return true;
  }
  bool rated(platform::NSObject*) {
    done += "r" + std::to_string(stars->nowValue());
    return true;
  }
  bool sought(platform::NSObject*) {
    done += "s" + std::to_string(std::lround(bar->nowValue()));
    return true;
  }

  std::shared_ptr<platform::NSButton> button;
  std::shared_ptr<virelune::VLRatingIndicator> stars;
  std::shared_ptr<virelune::VLProgressIndicator> bar;
  std::string done;
};

struct SilentPlayer final : desktop::PlayerControls {
  std::optional<desktop::PlayerReport> report() override { return std::nullopt; }
  std::optional<desktop::PlayerGlance> glance() override {
    return desktop::PlayerGlance{.volume = 0.5};
  }
  double position() override { return 0; }
  bool can(desktop::PlayerCommand) override { return true; }
  bool command(desktop::PlayerCommand) override { return true; }
  bool seek(double) override { return true; }
  bool setVolume(double) override { return true; }
};

struct KeyboardTest : testing::Test {
  KeyboardTest() {
    platform_.graphics = &graphics_;
    for (const char* name : {"play-pause", "rate", "rate-album", "volume", "seek"}) {
      actions_.add({.name = name,
                    .labelKey = "",
                    .isPossible = [] { return true; },
                    .isOn = {},
                    .perform =
                        [this, name](std::string_view argument) {
                          widget_->done += std::string(name) + '(' + std::string(argument) + ')';
                          return desktop::Action::Outcome();
                        }});
    }
  }
  std::string done() { return std::exchange(widget_->done, {}); }
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QKeyEvent event(QEvent::KeyPress, key, modifiers);
    QCoreApplication::sendEvent(&window_, &event);
  }
  void press(std::initializer_list<Qt::Key> keys) {
    for (const Qt::Key key : keys) press(key);
  }
  std::string focus() {
    const auto control = keyboard_.focus();
    return control ? control->accessibilityLabel() : "";
  }
  void turn(QPointF place, int angle) {
    QWheelEvent event(place, place, {}, {0, angle}, {}, {}, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(&window_, &event);
  }

  desktop::QtGraphics graphics_{desktop::opaqueLabelColor};
  platform::Platform platform_;
  platform::PlatformScope scope_{platform_};
  const std::shared_ptr<OperatedWidget> widget_ = platform::make<OperatedWidget>();
  desktop::Card card_{widget_, "Name"};
  desktop::CardSurface window_{card_, graphics_, {.title = "Name"}};
  desktop::Actions actions_;
  SilentPlayer player_;
  desktop::Keyboard keyboard_{window_, card_, actions_, player_};
};

TEST_F(KeyboardTest, TabWalksTheControlsInReadingOrderAndTheyUseTheirKeys) {
  std::string walk;
  for (int i = 0; i < 5; ++i) {
    press(Qt::Key_Tab);
    walk += focus() + ' ';
  }
  EXPECT_EQ(walk, "0003.0003 Next Stars Bar 0003.0003 ");
  press(Qt::Key_Backtab, Qt::ShiftModifier);
  EXPECT_EQ(focus(), "Bar");
  press({Qt::Key_Left, Qt::Key_Up, Qt::Key_PageUp, Qt::Key_Home, Qt::Key_End, Qt::Key_PageDown});
  EXPECT_EQ(done(), "s45s50s80s0s99s69");
  press(Qt::Key_Backtab, Qt::ShiftModifier);
  press({Qt::Key_Right, Qt::Key_Up, Qt::Key_Left, Qt::Key_Left, Qt::Key_Left});
  EXPECT_EQ(done(), "r10r20r10r0r0");
  press(Qt::Key_Backtab, Qt::ShiftModifier);
  press(Qt::Key_Return);
  press(Qt::Key_Space, Qt::AltModifier);
  EXPECT_EQ(done(), "pP");
  press(Qt::Key_Escape);
  EXPECT_EQ(focus(), "");
  press(Qt::Key_Space);
  EXPECT_EQ(done(), "play-pause()");
}

TEST_F(KeyboardTest, AControlThatHasGoneDoesNotKeepTheKeyboard) {
  press({Qt::Key_Tab, Qt::Key_Tab});
  widget_->button->removeFromSuperview();
  press(Qt::Key_Space);
  EXPECT_EQ(done(), "play-pause()");
  press(Qt::Key_Tab);
  widget_->stars->setHidden(true);
  press(Qt::Key_Tab);
  EXPECT_EQ(focus(), "Bar");
}

TEST_F(KeyboardTest, OtherKeysDoActionsWithTheirModifiers) {
  press(Qt::Key_4);
  press(Qt::Key_4, Qt::AltModifier);
  press(Qt::Key_4, Qt::ControlModifier);
  press(Qt::Key_Plus, Qt::ShiftModifier | Qt::KeypadModifier);
  press(Qt::Key_Down);
  EXPECT_EQ(done(), "rate(4)rate-album(4)rate(+)volume(-5)");
  EXPECT_EQ(desktop::keyText("close"), "Ctrl+Q");
}

TEST_F(KeyboardTest, TheWheelSeeksOverTheBarRestsOverTheStarsAndIsTheVolumeElsewhere) {
  turn({100, 86}, 240);
  EXPECT_EQ(done(), "s60");
  turn({100, 72}, 120);
  EXPECT_EQ(done(), "");
  turn({200, 50}, -120);
  EXPECT_EQ(done(), "volume(-5)");
  for (const int part : {40, 40, 39, -10, 100, 20}) turn({200, 50}, part);
  EXPECT_EQ(done(), "volume(+5)") << "only the last two add up to a step";
  card_.window().sendEvent({.type = platform::NSEventType::leftMouseDown,
                            .locationInWindow = {10, 50},
                            .clickCount = 1});
  turn({200, 50}, 120);
  EXPECT_EQ(done(), "") << "not during a press";
  card_.window().cancelMouseTracking();
}

}  // namespace
