#include "platform/loop/notification.h"

#include "tests/support/listener.h"
#include "tests/support/widget_fixture.h"

namespace tests {
namespace {

using platform::NSTimer;

using Timers = WidgetFixture;

TEST_F(Timers, AnyFiresOnceAtItsTimeUnlessInvalidatedOrItsTargetIsGone) {
  const auto timer = [](const auto& target) {
    return NSTimer::timerWithTimeInterval(1, target.get(), &Listener::fired);
  };
  auto& loop = clock.runLoop();
  auto first = platform::make<Listener>(), second = platform::make<Listener>();
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
