#include "desktop/window/card.h"

#include <gtest/gtest.h>
#include <QtCore/QCoreApplication>
#include <QtCore/QEventLoop>
#include <QtGui/QMouseEvent>

#include "desktop/graphics/qt_image.h"
#include "desktop/window/card_menu.h"
#include "desktop/window/card_style.h"
#include "desktop/window/card_surface.h"
#include "desktop/window/mouse_input.h"
#include "platform/platform.h"
#include "tests/support/temporary_folder.h"

namespace {

using namespace platform;

/// Notes how often it is drawn, and its mouse events.
struct NotingView : NSView {
  using NSView::NSView;
  void drawRect(NSRect) override { ++drawings; }
  void mouseDown(const NSEvent* event) override { events.push_back(*event); }
  void mouseDragged(const NSEvent* event) override { events.push_back(*event); }
  void mouseUp(const NSEvent* event) override { events.push_back(*event); }

  int drawings = 0;
  std::vector<NSEvent> events;
};

class FakeWidget : public NSViewController, public NCWidgetProviding {
 public:
  bool init() override {
    setView(make<NSView>(NSMakeRect(0, 0, 320, 64)));
    for (auto [child, x] :
         {std::pair(&left, 0.0), std::pair(&middle, 100.0), std::pair(&right, 300.0)}) {
      *child = make<NotingView>(NSMakeRect(x, 0, 20, 20));
      view()->addSubview(*child);
    }
    setPreferredContentSize({320, 64});
    return true;
  }
  void viewWillAppear() override { appeared = true; }
  void viewWillDisappear() override { appeared = false; }
  void widgetPerformUpdateWithCompletionHandler(
      const std::function<void(NCUpdateResult)>& handler) override {
    handler(NCUpdateResult::newData);
  }
  NSEdgeInsets widgetMarginInsetsForProposedMarginInsets(NSEdgeInsets) override {
    return NSEdgeInsetsZero;
  }
  bool widgetAllowsEditing() const override { return allowsEditing; }
  void widgetDidBeginEditing() override { editing.push_back(true); }
  void widgetDidEndEditing() override { editing.push_back(false); }

  std::shared_ptr<NotingView> left, middle, right;
  bool appeared = false;
  bool allowsEditing = true;
  std::vector<bool> editing;
};

struct CardTest : testing::Test {
  CardTest() { platform_.graphics = &graphics_; }

  void click(NSPoint point) {
    for (const auto type : {NSEventType::leftMouseDown, NSEventType::leftMouseUp}) {
      card_.window().sendEvent({.type = type, .locationInWindow = point, .clickCount = 1});
    }
  }

  static void send(QWindow& window, QEvent::Type type, QPointF place, Qt::MouseButton button,
                   Qt::MouseButtons buttons = {}, Qt::KeyboardModifiers modifiers = {},
                   quint64 timestamp = 0) {
    QMouseEvent event(type, place, window.mapToGlobal(place), button, buttons, modifiers);
    event.setTimestamp(timestamp);
    QCoreApplication::sendEvent(&window, &event);
  }

  Platform platform_;
  PlatformScope scope_{platform_};
  desktop::QtGraphics graphics_{desktop::opaqueLabelColor};
  std::shared_ptr<FakeWidget> widget_ = make<FakeWidget>();
  desktop::Card card_{widget_, "Name"};
  desktop::CardSurface window_{card_, graphics_, {.title = "Name"}};

  // In the header, 24 points high above the widget's 64.
  const NSPoint closeControl_{305, 76};
  const NSPoint editControl_{285, 76};
  const NSPoint title_{40, 76};
};

TEST_F(CardTest, TheHeaderMovesTheCardButForItsControlsWhichEditAndClose) {
  int closings = 0;
  card_.header().setCloseHandler([&] { ++closings; });
  EXPECT_TRUE(card_.header().isHandle(title_));
  for (const NSPoint point : {closeControl_, editControl_, NSPoint{40, 63}}) {
    EXPECT_FALSE(card_.header().isHandle(point)) << point.x;
  }
  for (const NSPoint point : {editControl_, title_, editControl_}) click(point);
  EXPECT_EQ(widget_->editing, (std::vector<bool>{true, false}));
  EXPECT_EQ(closings, 0);
  click(closeControl_);
  EXPECT_EQ(closings, 1);

  const auto fixed = make<FakeWidget>();
  fixed->allowsEditing = false;
  EXPECT_TRUE(desktop::Card(fixed, "Name").header().isHandle(editControl_));
}

struct CardWindowTest : CardTest {
  CardWindowTest() {
    window_.setPaintObserver([this](const QRegion& region) {
      painted_ += region;
      wasReady_ = widget_->appeared;
    });
  }

  /// Lets events run until something has been painted, and a little longer.
  void runUntilPainted() {
    painted_ = {};
    for (int i = 0; i < 250 && painted_.isEmpty(); ++i) runEvents();
    runEvents();
  }
  static void runEvents() {
    QEventLoop loop;
    QTimer::singleShot(20, &loop, &QEventLoop::quit);
    loop.exec();
  }
  void press(quint64 timestamp, QPointF position = {110, 78},
             Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    send(window_, QEvent::MouseButtonPress, position, Qt::LeftButton, Qt::LeftButton, modifiers,
         timestamp);
  }
  void release() { send(window_, QEvent::MouseButtonRelease, {110, 78}, Qt::LeftButton); }

  QRegion painted_;
  bool wasReady_ = false;
};

TEST_F(CardWindowTest, PaintsWhatWasMarkedAndNothingBetween) {
  window_.open();
  runUntilPainted();
  window_.update();  // off screen, the first update is always a whole one
  runUntilPainted();
  for (const auto& view : {widget_->left, widget_->middle, widget_->right}) view->drawings = 0;
  widget_->left->setNeedsDisplay(true);
  widget_->right->setNeedsDisplayInRect(NSMakeRect(5, 5, 4, 4));
  runUntilPainted();
  EXPECT_EQ(painted_, QRegion(0, 68, 20, 20) + QRegion(305, 79, 4, 4));
  EXPECT_GE(widget_->left->drawings, 1);
  EXPECT_EQ(widget_->middle->drawings, 0);
  EXPECT_GE(widget_->right->drawings, 1);
}

TEST_F(CardWindowTest, FollowsTheSizeInPlaceAndTellsTheWidgetWhenItIsSeen) {
  window_.setPosition(100, 50);
  window_.open();
  runUntilPainted();
  EXPECT_TRUE(wasReady_);
  const QPoint corner = window_.position();
  widget_->setPreferredContentSize({320, 30});
  runUntilPainted();
  EXPECT_EQ(window_.size(), QSize(320, 54));
  EXPECT_EQ(window_.position(), corner);
  window_.hide();
  runEvents();
  EXPECT_FALSE(widget_->appeared);
}

TEST_F(CardWindowTest, MouseEventsCountUpwardsWithClicksAndTheOptionKey) {
  press(1000, {110, 78}, Qt::AltModifier);
  release();
  for (const auto& [time, position] :
       {std::pair(1100, QPointF(110, 78)), std::pair(5000, QPointF(110, 78)),
        std::pair(5100, QPointF(104, 72))}) {
    press(static_cast<quint64>(time), position);
    release();
  }
  std::vector<std::int64_t> clicks;
  for (const auto& event : widget_->middle->events) {
    if (event.type == NSEventType::leftMouseDown) clicks.push_back(event.clickCount);
  }
  EXPECT_EQ(clicks, (std::vector<std::int64_t>{1, 2, 1, 1}));
  const NSEvent& first = widget_->middle->events.front();
  EXPECT_EQ(first.locationInWindow, (NSPoint{110, 10}));
  EXPECT_EQ(first.modifierFlags, NSEventModifierFlagOption);
}

TEST_F(CardWindowTest, APressWhoseReleaseWasLostEndsWithTheNextMove) {
  press(1000);
  send(window_, QEvent::MouseMove, {111, 78}, Qt::NoButton, Qt::LeftButton);
  EXPECT_EQ(NSEvent::pressedMouseButtons(), 1U);
  const auto heard = widget_->middle->events.size();
  send(window_, QEvent::MouseMove, {112, 78}, Qt::NoButton);
  EXPECT_EQ(NSEvent::pressedMouseButtons(), 0U);
  release();
  EXPECT_EQ(widget_->middle->events.size(), heard);
}

TEST(CardArea, IsRoundedOutwardsToWholePixelsAtEveryScale) {
  const QRectF marked(4.5, 81, 3, 7);
  for (const auto& [scale, expected] : {std::pair(1.0, QRect(4, 81, 4, 7)),
                                        {2.0, QRect(4, 81, 4, 7)},
                                        {1.5, QRect(4, 80, 4, 8)},
                                        {1.25, QRect(4, 80, 4, 8)},
                                        {1.75, QRect(4, 80, 4, 8)},
                                        {4 / 3.0, QRect(3, 81, 6, 9)}}) {
    EXPECT_EQ(desktop::areaOfWholePixels(marked, scale), expected) << scale;
  }
  EXPECT_EQ(desktop::areaOfWholePixels({-0.5, 0, 1, 1}, 1.5), QRect(-2, 0, 4, 2));
}

struct CardMenuTest : CardTest {
  void openMenu() { send(window_, QEvent::MouseButtonPress, {50, 50}, Qt::RightButton); }
  void click(QPointF place) {
    send(menu_, QEvent::MouseButtonPress, place, Qt::LeftButton);
    send(menu_, QEvent::MouseButtonRelease, place, Qt::LeftButton);
  }
  void clickItem(std::size_t index) { click(menu_.itemPlace(index).center()); }
  void keys(std::initializer_list<Qt::Key> keys) {
    for (const Qt::Key key : keys) {
      QKeyEvent event(QEvent::KeyPress, key, {});
      QCoreApplication::sendEvent(&menu_, &event);
    }
  }
  desktop::MenuItem choice(const char* name) {
    return {.title = name, .choose = [this, name] { chosen_ += name; }};
  }

  std::string chosen_;
  desktop::CardMenu menu_{
      window_, graphics_, [this] {
        auto never = choice("c");
        never.isEnabled = false;
        auto pictured = choice("y");
        pictured.icon = [this] {
          ++iconsAsked_;
          return make<desktop::BitmapImage>(QImage(16, 16, QImage::Format_RGB32), NSSize{16, 16});
        };
        return std::vector<desktop::MenuItem>{
            choice("a"), {.title = "b", .children = {choice("x"), pictured}}, never};
      }};
  int iconsAsked_ = 0;
};

TEST_F(CardMenuTest, IsChosenFromByClicksAndByKeysOnEveryLevel) {
  window_.show();
  openMenu();
  clickItem(2);
  EXPECT_TRUE(menu_.isVisible()) << "what cannot be done is not chosen";
  EXPECT_EQ(iconsAsked_, 0) << "looking for icons takes time";
  const QSize size = menu_.size();
  clickItem(1);
  EXPECT_TRUE(menu_.isVisible());
  EXPECT_EQ(iconsAsked_, 1);
  EXPECT_GE(menu_.width(), size.width() + 20) << "room for the icon";
  ASSERT_EQ(menu_.items().size(), 3u) << "the way back and two more";
  clickItem(0);
  EXPECT_EQ(menu_.items()[0].title, "a");
  EXPECT_EQ(menu_.size(), size);
  clickItem(1);
  clickItem(2);
  EXPECT_FALSE(menu_.isVisible());
  EXPECT_EQ(chosen_, "y");
  openMenu();
  EXPECT_EQ(menu_.items()[0].title, "a") << "opens at the first level";
  keys({Qt::Key_Down, Qt::Key_Right, Qt::Key_Down, Qt::Key_Right, Qt::Key_Down, Qt::Key_Down,
        Qt::Key_Return});
  EXPECT_EQ(chosen_, "yx");
  openMenu();
  keys({Qt::Key_Up, Qt::Key_Up, Qt::Key_Return, Qt::Key_Left, Qt::Key_Down, Qt::Key_Space});
  EXPECT_EQ(chosen_, "yxa");
  openMenu();
  keys({Qt::Key_Return, Qt::Key_Escape});
  EXPECT_FALSE(menu_.isVisible());
  EXPECT_EQ(chosen_, "yxa");
}

TEST_F(CardMenuTest, ChoosesNothingByTheReleaseThatOpenedItNorByAClickElsewhere) {
  window_.show();
  openMenu();
  const QPointF item = menu_.itemPlace(0).center();
  send(menu_, QEvent::MouseButtonRelease, item, Qt::RightButton);
  EXPECT_TRUE(menu_.isVisible());
  click({-20, 10});
  EXPECT_FALSE(menu_.isVisible());
  openMenu();
  send(menu_, QEvent::MouseMove, item, Qt::NoButton);
  send(menu_, QEvent::MouseMove, {1, 1}, Qt::NoButton);
  send(menu_, QEvent::MouseButtonRelease, {1, 1}, Qt::RightButton);
  EXPECT_EQ(chosen_, "") << "the pointer had left the item";
  send(menu_, QEvent::MouseMove, item, Qt::NoButton);
  send(menu_, QEvent::MouseButtonRelease, item, Qt::RightButton);
  EXPECT_EQ(chosen_, "a") << "pressed, drawn to the item and let go";
}

}  // namespace
