#include "platform/dispatch.h"

#include <gtest/gtest.h>

#include <atomic>
#include <barrier>
#include <future>

namespace platform {
namespace {

TEST(WorkerPool, TasksThatBlockDoNotHoldEachOtherUp) {
  constexpr int count = 4;
  std::barrier meeting(count);
  std::promise<void> everyoneMet;
  std::atomic<int> met = 0;
  WorkerPool pool(count);
  for (int task = 0; task < count; ++task) {
    pool.async([&] {
      meeting.arrive_and_wait();
      if (++met == count) everyoneMet.set_value();
    });
  }
  everyoneMet.get_future().wait();
}

TEST(WorkerPool, GoingAwayWaitsForTheTaskUnderWay) {
  std::promise<void> begun;
  std::promise<void> release;
  bool finished = false;
  std::thread releaser;
  {
    WorkerPool pool(1);
    pool.async([&] {
      begun.set_value();
      release.get_future().wait();
      finished = true;
    });
    begun.get_future().wait();
    releaser = std::thread([&] { release.set_value(); });
  }
  EXPECT_TRUE(finished);
  releaser.join();
}

}  // namespace
}  // namespace platform
