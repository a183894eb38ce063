#include "platform/loop/dispatch.h"

#include <gtest/gtest.h>

#include <future>

namespace platform {
namespace {

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
