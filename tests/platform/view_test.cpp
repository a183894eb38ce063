#include "platform/view.h"

#include "platform/button.h"
#include "platform/view_controller.h"
#include "tests/support/widget_fixture.h"

namespace tests {
namespace {

using platform::NSEvent;
using platform::NSEventType;
using platform::NSMakeRect;
using platform::NSRect;
using platform::NSView;
using testing::ElementsAre;

class Controller : public platform::NSViewController {
 public:
  explicit Controller(std::vector<std::string>& log, std::string name)
      : log_(log), name_(std::move(name)) {}
  void viewWillAppear() override {
    log_.push_back("+" + name_);
    if (onAppearing) onAppearing();
  }
  void viewWillDisappear() override {
    log_.push_back("-" + name_);
    if (onDisappearing) onDisappearing();
  }
  std::function<void()> onAppearing;
  std::function<void()> onDisappearing;

 private:
  std::vector<std::string>& log_;
  std::string name_;
};

class Views : public WidgetFixture {
 protected:
  std::shared_ptr<Controller> makeController(const std::string& name) {
    auto controller = platform::make<Controller>(log, name);
    controller->setView(platform::make<NSView>(NSMakeRect(0, 0, 10, 10)));
    return controller;
  }
  std::vector<std::string> log;
  std::shared_ptr<NSView> root = platform::make<NSView>(NSMakeRect(0, 0, 100, 50));
};

TEST_F(Views, ControllersAreToldOnceWhenTheirViewComesAndGoes) {
  const auto outer = makeController("outer");
  const auto inner = makeController("inner");
  window->setContentView(outer->view());
  window->setVisible(true);
  window->setVisible(true);
  outer->view()->addSubview(inner->view());
  inner->view()->removeFromSuperview();
  window->setVisible(false);
  EXPECT_THAT(log, ElementsAre("+outer", "+inner", "-inner", "-outer"));
}

TEST_F(Views, ViewAddedWhileItsParentAppearsIsToldOnce) {
  const auto outer = makeController("outer");
  const auto inner = makeController("inner");
  outer->onAppearing = [&] { outer->view()->addSubview(inner->view()); };
  window->setContentView(outer->view());
  window->setVisible(true);
  EXPECT_THAT(log, ElementsAre("+outer", "+inner"));
}

TEST_F(Views, ViewStillHasItsWindowWhileItDisappears) {
  const auto outer = makeController("outer");
  auto inner = makeController("inner");
  window->setContentView(outer->view());
  window->setVisible(true);
  outer->view()->addSubview(inner->view());
  bool hadWindow = false;
  inner->onDisappearing = [&] { hadWindow = inner->view()->window() == window.get(); };
  inner->view()->removeFromSuperview();
  EXPECT_TRUE(hadWindow);
  EXPECT_EQ(inner->view()->window(), nullptr);
}

TEST_F(Views, ControllerDestroyedWhileShownLeavesItsViewInPeace) {
  auto controller = makeController("c");
  const auto view = controller->view();
  window->setContentView(root);
  window->setVisible(true);
  root->addSubview(view);
  controller.reset();
  window->setVisible(false);
  EXPECT_THAT(log, ElementsAre("+c"));
}

TEST_F(Views, MarksAreInWindowCoordinatesAndCutToWhatTheParentsShow) {
  window->setContentView(root);
  const auto view = platform::make<NSView>(NSMakeRect(10, -7, 20, 14));
  root->addSubview(view);
  marked.clear();
  view->setNeedsDisplay(true);
  EXPECT_THAT(marked, ElementsAre(NSMakeRect(10, 0, 20, 7)));
  marked.clear();
  view->setHidden(true);
  view->setNeedsDisplay(true);
  EXPECT_THAT(marked, ElementsAre(NSMakeRect(10, 0, 20, 7)));
}

class Filled : public NSView {
 public:
  using NSView::NSView;
  void drawRect(NSRect) override {
    platform::NSColor::grayColor().set();
    platform::NSRectFillUsingOperation(bounds(), platform::NSCompositeSourceOver);
  }
  void mouseDown(const NSEvent*) override { events += "d"; }
  void mouseDragged(const NSEvent*) override { events += "m"; }
  void mouseUp(const NSEvent*) override {
    events += "u";
    pressedAtRelease = NSEvent::pressedMouseButtons();
  }
  std::string events;
  std::uint64_t pressedAtRelease = 99;
};

TEST_F(Views, DisplayDrawsOnlyWhatMeetsTheRectangleWithItsOpacity) {
  window->setContentView(root);
  const auto left = platform::make<Filled>(NSMakeRect(0, 0, 10, 10));
  const auto right = platform::make<Filled>(NSMakeRect(50, 5, 10, 10));
  root->addSubview(left);
  root->addSubview(right);
  right->setAlphaValue(0.5);
  RecordingCanvas canvas;
  window->display(canvas, NSMakeRect(45, 0, 20, 20));
  ASSERT_EQ(canvas.steps().size(), 1U);
  EXPECT_EQ(canvas.steps()[0].rect, NSMakeRect(50, 5, 10, 10));
  EXPECT_DOUBLE_EQ(canvas.steps()[0].alpha, 0.5);
  EXPECT_TRUE(canvas.isBalanced());
}

TEST_F(Views, PressedViewGetsDragsAndReleaseWhereverThePointerGoes) {
  window->setContentView(root);
  const auto left = platform::make<Filled>(NSMakeRect(0, 0, 10, 10));
  const auto right = platform::make<Filled>(NSMakeRect(50, 0, 10, 10));
  root->addSubview(left);
  root->addSubview(right);
  sendMouse(NSEventType::leftMouseDown, {5, 5});
  EXPECT_EQ(NSEvent::pressedMouseButtons() & 1U, 1U);
  sendMouse(NSEventType::leftMouseDragged, {55, 5});
  sendMouse(NSEventType::leftMouseUp, {500, 500});
  EXPECT_EQ(left->events, "dmu");
  EXPECT_EQ(right->events, "");
  EXPECT_EQ(left->pressedAtRelease, 0U);
  EXPECT_FALSE(platform_.application.currentEvent());
}

TEST_F(Views, ViewRemovedWhilePressedGetsNothingMore) {
  window->setContentView(root);
  auto view = platform::make<Filled>(NSMakeRect(0, 0, 10, 10));
  root->addSubview(view);
  sendMouse(NSEventType::leftMouseDown, {5, 5});
  view->removeFromSuperview();
  view.reset();
  sendMouse(NSEventType::leftMouseUp, {5, 5});
  EXPECT_EQ(NSEvent::pressedMouseButtons(), 0U);
}

class Target : public platform::NSObject {
 public:
  bool clicked(NSObject* sender) {
    senders.push_back(sender);
    return true;
  }
  std::vector<NSObject*> senders;
};

TEST_F(Views, ButtonClicksOnlyWhenReleasedInsideAndItsTargetLives) {
  window->setContentView(root);
  const auto button = platform::make<platform::NSButton>(NSMakeRect(0, 0, 20, 20));
  auto target = platform::make<Target>();
  root->addSubview(button);
  button->setTarget(target);
  click({5, 5});
  EXPECT_TRUE(target->senders.empty()) << "no action set yet";
  button->setAction(&Target::clicked);
  click({5, 5});
  sendMouse(NSEventType::leftMouseDown, {5, 5});
  sendMouse(NSEventType::leftMouseUp, {25, 5});
  EXPECT_THAT(target->senders, ElementsAre(button.get()));
  target.reset();
  click({5, 5});
  button->setTarget(platform::make<Controller>(log, "other class"));
  click({5, 5});
}

TEST_F(Views, ImageKeepsItsProportionsInTheButton) {
  const auto button = platform::make<platform::NSButton>(NSMakeRect(0, 0, 40, 20));
  button->setBordered(false);
  button->setImageScaling(platform::NSImageScaling::proportionallyUpOrDown);
  button->setImage(platform::make<TestImage>("square", platform::NSSize{10, 10}));
  window->setContentView(button);
  RecordingCanvas canvas;
  window->display(canvas, NSMakeRect(0, 0, 100, 100));
  ASSERT_EQ(canvas.steps().size(), 1U);
  EXPECT_EQ(canvas.steps()[0].rect, NSMakeRect(10, 0, 20, 20));
}

}  // namespace
}  // namespace tests
