#include "platform/notification.h"

#include "tests/support/widget_fixture.h"

namespace tests {
namespace {

using platform::NSNotification;
using testing::ElementsAre;

class Listener : public platform::NSObject {
 public:
  bool heard(const NSNotification* notification) {
    names.push_back(notification->name());
    if (onHearing) onHearing();
    return true;
  }
  std::vector<std::string> names;
  std::function<void()> onHearing;
};

class Notifications : public WidgetFixture {
 protected:
  platform::NSNotificationCenter& center = platform_.defaultCenter;
  std::shared_ptr<Listener> first = platform::make<Listener>();
  std::shared_ptr<Listener> second = platform::make<Listener>();

  void enqueue(const std::string& name, unsigned mask) {
    platform::NSNotificationQueue::defaultQueue()->enqueueNotification(
        NSNotification(name, first), platform::NSPostWhenIdle, mask);
  }
};

TEST_F(Notifications, ObserverRemovedDuringADeliveryIsNotCalledAnyMore) {
  center.addObserver(first.get(), &Listener::heard, "n");
  center.addObserver(second.get(), &Listener::heard, "n");
  first->onHearing = [&] { center.removeObserver(second.get()); };
  center.postNotification(NSNotification("n"));
  EXPECT_TRUE(second->names.empty());
  EXPECT_EQ(center.registrationCount(), 1U);
}

TEST_F(Notifications, ObserverAddedDuringADeliveryWaitsForTheNext) {
  center.addObserver(first.get(), &Listener::heard, "n");
  first->onHearing = [&] {
    first->onHearing = nullptr;
    center.addObserver(second.get(), &Listener::heard, "n");
  };
  center.postNotification(NSNotification("n"));
  EXPECT_TRUE(second->names.empty());
  center.postNotification(NSNotification("n"));
  EXPECT_THAT(second->names, ElementsAre("n"));
}

TEST_F(Notifications, ObserverDestroyedDuringADeliveryIsLeftAlone) {
  center.addObserver(first.get(), &Listener::heard, "n");
  center.addObserver(second.get(), &Listener::heard, "n");
  first->onHearing = [&] { second.reset(); };
  center.postNotification(NSNotification("n"));
  EXPECT_THAT(first->names, ElementsAre("n"));
}

TEST_F(Notifications, OnlyTheChosenSenderIsHeard) {
  center.addObserver(first.get(), &Listener::heard, "n", second.get());
  center.postNotification(NSNotification("n", first));
  center.postNotification(NSNotification("n"));
  EXPECT_TRUE(first->names.empty());
  center.postNotification(NSNotification("n", second));
  EXPECT_THAT(first->names, ElementsAre("n"));
}

TEST_F(Notifications, QueueDeliversWhenIdleAndCoalescesOnlyWhenAsked) {
  center.addObserver(first.get(), &Listener::heard, "a");
  center.addObserver(first.get(), &Listener::heard, "b");
  const unsigned both =
      platform::NSNotificationCoalescingOnName | platform::NSNotificationCoalescingOnSender;
  enqueue("a", both);
  enqueue("a", both);
  enqueue("b", platform::NSNotificationNoCoalescing);
  enqueue("b", platform::NSNotificationNoCoalescing);
  EXPECT_TRUE(first->names.empty());
  clock.settle();
  EXPECT_THAT(first->names, ElementsAre("a", "b", "b"));
}

TEST_F(Notifications, WhatADeliveryEnqueuesWaitsForTheNextIdleMoment) {
  center.addObserver(first.get(), &Listener::heard, "n");
  first->onHearing = [&] {
    first->onHearing = nullptr;
    enqueue("n", platform::NSNotificationNoCoalescing);
  };
  enqueue("n", platform::NSNotificationNoCoalescing);
  clock.runLoop().runPass();
  EXPECT_EQ(first->names.size(), 1U);
  clock.runLoop().runPass();
  EXPECT_EQ(first->names.size(), 2U);
}

TEST_F(Notifications, BusyRunLoopHoldsIdleNotificationsBack) {
  center.addObserver(first.get(), &Listener::heard, "n");
  enqueue("n", platform::NSNotificationNoCoalescing);
  clock.runLoop().dispatchAsync([&] { clock.runLoop().dispatchAsync([] {}); });
  clock.runLoop().runPass();
  EXPECT_TRUE(first->names.empty());
  clock.runLoop().runPass();
  EXPECT_EQ(first->names.size(), 1U);
}

class TimerTarget : public platform::NSObject {
 public:
  bool fired(platform::NSTimer*) {
    ++count;
    return true;
  }
  int count = 0;
};

TEST_F(Notifications, TimerFiresOnceAtItsTimeUnlessInvalidatedOrItsTargetIsGone) {
  auto target = platform::make<TimerTarget>();
  auto gone = platform::make<TimerTarget>();
  auto& loop = clock.runLoop();
  const auto timer = platform::NSTimer::timerWithTimeInterval(1, target.get(), &TimerTarget::fired);
  const auto invalid =
      platform::NSTimer::timerWithTimeInterval(1, target.get(), &TimerTarget::fired);
  loop.addTimer(timer);
  loop.addTimer(timer);
  loop.addTimer(invalid);
  loop.addTimer(platform::NSTimer::timerWithTimeInterval(1, gone.get(), &TimerTarget::fired));
  invalid->invalidate();
  gone.reset();
  clock.advance(0.999);
  EXPECT_EQ(target->count, 0);
  clock.advance(5);
  EXPECT_EQ(target->count, 1);
  EXPECT_FALSE(timer->isValid());
  EXPECT_EQ(loop.scheduledTimerCount(), 0U);
}

TEST_F(Notifications, TimerInvalidatedByAnEarlierOneOfTheSameMomentDoesNotFire) {
  auto target = platform::make<TimerTarget>();
  auto& loop = clock.runLoop();
  const auto later = platform::NSTimer::timerWithTimeInterval(1, target.get(), &TimerTarget::fired);
  loop.addTimer(
      platform::NSTimer::timerWithBlock(1, [&](platform::NSTimer*) { later->invalidate(); }));
  loop.addTimer(later);
  clock.advance(2);
  EXPECT_EQ(target->count, 0);
}

}  // namespace
}  // namespace tests
