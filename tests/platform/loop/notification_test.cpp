#include "platform/loop/notification.h"

#include "tests/support/listener.h"
#include "tests/support/widget_fixture.h"

namespace tests {
namespace {

using platform::NSNotification;
using platform::NSTimer;

class Notifications : public WidgetFixture {
 protected:
  platform::NSNotificationCenter& center = *platform_.defaultCenter;
  std::shared_ptr<Listener> first = platform::make<Listener>();
  std::shared_ptr<Listener> second = platform::make<Listener>();
};

TEST_F(Notifications, ObserversMayComeAndGoDuringADelivery) {
  const auto removed = platform::make<Listener>();
  auto destroyed = platform::make<Listener>();
  first->onCall = [&] {
    center.removeObserver(removed.get());
    destroyed.reset();
    if (first->count == 1) center.addObserver(second.get(), &Listener::heard, "n");
  };
  for (const auto& observer : {first, removed, destroyed}) {
    center.addObserver(observer.get(), &Listener::heard, "n");
  }
  center.postNotification(NSNotification("n"));
  EXPECT_EQ(removed->count, 0);
  EXPECT_EQ(second->count, 0) << "the newcomer waits for the next";
  center.postNotification(NSNotification("n"));
  EXPECT_EQ(second->count, 1);
}

TEST_F(Notifications, TimerFiresOnceAtItsTimeUnlessInvalidatedOrItsTargetIsGone) {
  const auto timer = [](const auto& target) {
    return NSTimer::timerWithTimeInterval(1, target.get(), &Listener::fired);
  };
  auto& loop = clock.runLoop();
  const auto fires = timer(first);
  const auto sameMoment = timer(first);
  loop.addTimer(fires);
  loop.addTimer(fires);
  loop.addTimer(timer(second));
  loop.addTimer(NSTimer::timerWithBlock(1, [&](NSTimer*) { sameMoment->invalidate(); }));
  loop.addTimer(sameMoment);
  second.reset();
  clock.advance(0.999);
  EXPECT_EQ(first->count, 0);
  clock.advance(5);
  EXPECT_EQ(first->count, 1);
  EXPECT_FALSE(fires->isValid());
  EXPECT_EQ(loop.scheduledTimerCount(), 0U);
}

}  // namespace
}  // namespace tests
