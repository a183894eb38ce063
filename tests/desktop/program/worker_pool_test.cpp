#include "desktop/program/worker_pool.h"

#include <gtest/gtest.h>

#include <future>

namespace desktop {
namespace {

TEST(WorkerPool, GoingAwayDropsWhatHasNotBegunAndWaitsForWhatHas) {
  std::promise<void> release;
  bool hasFinished = false;
  bool hasRunLate = false;
  {
    WorkerPool pool(1);
    std::promise<void> begun;
    pool.async([&] {
      begun.set_value();
      release.get_future().wait();
      pool.async([&] { hasRunLate = true; });
      hasFinished = true;
    });
    begun.get_future().wait();
    const std::shared_ptr<void> dropped(nullptr, [&](void*) { release.set_value(); });
    pool.async([&hasRunLate, dropped] { hasRunLate = true; });
  }
  EXPECT_TRUE(hasFinished);
  EXPECT_FALSE(hasRunLate);
}

}  // namespace
}  // namespace desktop
