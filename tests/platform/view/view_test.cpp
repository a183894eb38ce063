#include "platform/view/view.h"

#include <algorithm>

#include "platform/view/button.h"
#include "tests/support/listener.h"
#include "tests/support/widget_fixture.h"

namespace tests {
namespace {

using namespace platform;
using testing::ElementsAre;

/// Writes down its mouse events.
class Filled : public NSView {
 public:
  using NSView::NSView;
  void drawRect(NSRect) override {
    setCurrentColor(NSColor::grayColor());
    NSRectFillUsingOperation(bounds(), NSCompositeSourceOver);
  }
  void mouseDown(const NSEvent*) override { note('d'); }
  void mouseUp(const NSEvent*) override { note('u'); }
  std::string events;  ///< with the buttons that were pressed then

 private:
  void note(char event) { events += event + std::to_string(NSEvent::pressedMouseButtons()); }
};

struct Views : WidgetFixture {
  Views() { window->setContentView(root); }
  template <class View>
  std::shared_ptr<View> add(NSRect frame) {
    auto view = make<View>(frame);
    root->addSubview(view);
    return view;
  }
  std::shared_ptr<NSView> root = make<NSView>(NSMakeRect(0, 0, 100, 50));
};

TEST_F(Views, MarksAreCutToWhatTheParentsShowAndDisplayDrawsOnlyWhatMeetsTheRectangle) {
  const auto view = add<Filled>(NSMakeRect(10, -7, 20, 14));
  marked.clear();
  view->setNeedsDisplay(true);
  EXPECT_THAT(marked, ElementsAre(NSMakeRect(10, 0, 20, 7)));
  add<Filled>(NSMakeRect(50, 5, 10, 10))->setAlphaValue(0.5);
  const auto drawn = [this](NSRect rect) {
    RecordingCanvas canvas;
    window->display(canvas, rect);
    EXPECT_TRUE(canvas.isBalanced());
    return std::ranges::count(canvas.text(), '\n');
  };
  EXPECT_EQ(drawn(NSMakeRect(45, 0, 20, 20)), 1);
  EXPECT_EQ(drawn(NSMakeRect(0, 0, 100, 50)), 2);
  view->setHidden(true);
  EXPECT_EQ(drawn(NSMakeRect(0, 0, 100, 50)), 1);
  marked.clear();
  view->setNeedsDisplay(true);
  EXPECT_TRUE(marked.empty());
  view->setHidden(false);
  view->setFrame(NSMakeRect(30, 10, 5, 5));
  EXPECT_THAT(marked, ElementsAre(NSMakeRect(10, 0, 20, 7), NSMakeRect(10, 0, 20, 7),
                                  NSMakeRect(30, 10, 5, 5)));
  marked.clear();
  view->removeFromSuperview();
  EXPECT_THAT(marked, ElementsAre(NSMakeRect(30, 10, 5, 5)));
  const auto outer = add<NSView>(NSMakeRect(50, 20, 40, 20));
  view->setFrame(NSMakeRect(10, 5, 10, 10));
  outer->addSubview(view);
  click({61, 26});
  click({59, 26});
  EXPECT_EQ(view->events, "d1u0") << "where its parent has put it";
}

TEST_F(Views, AButtonsActionNeedsATargetThatLivesAndHasIt) {
  const auto button = add<NSButton>(NSMakeRect(0, 0, 20, 20));
  auto target = make<Listener>();
  button->setTarget(target);
  click({5, 5});
  button->setAction(&Listener::clicked);
  click({5, 5});
  EXPECT_EQ(target->count, 1);
  target.reset();
  click({5, 5});
  button->setTarget(root);
  click({5, 5});
}

}  // namespace
}  // namespace tests
