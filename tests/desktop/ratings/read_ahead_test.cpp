#include "desktop/ratings/read_ahead.h"

#include "platform/platform.h"
#include "tests/desktop/ratings/ratings_fixture.h"
#include "tests/support/manual_clock.h"
#include "tests/support/scripted.h"

namespace desktop {
namespace {

TEST_F(RatingsFixture, ATrackIsReadAheadOnceInAWhileAndOnlyTheLastOneIsTold) {
  platform::Platform platform;
  const platform::PlatformScope scope(platform);
  tests::ManualClock clock;
  platform.runLoop = &clock.runLoop();
  tests::ManualQueue reader;
  int told = 0;
  auto ahead = std::make_unique<ReadAhead>(reader, file, [&told] { ++told; });
  const auto isRead = [&](const char* title) { return ahead->hasRead({.title = title}, "mpv"); };
  for (const char* title : {"first", "second", "second"}) EXPECT_FALSE(isRead(title));
  EXPECT_EQ(reader.count(), 1U) << "one at a time";
  reader.runAll();
  clock.settle();
  EXPECT_EQ(told, 0);
  EXPECT_FALSE(isRead("second"));
  reader.runAll();
  clock.settle();
  EXPECT_EQ(told, 1);
  EXPECT_EQ(reader.count(), 0U);
  EXPECT_TRUE(isRead("second"));
  clock.advance(61);  // by then others may have taken the memory
  EXPECT_FALSE(isRead("second"));
  ahead.reset();
  reader.runAll();
  clock.settle();
  EXPECT_EQ(told, 1);
}

TEST_F(RatingsFixture, WhatIsReadAheadIsNeitherMadeNorMended) {
  const TrackIdentity track{.title = "T"};
  RatingsStore::readAhead(file, track, "mpv");
  EXPECT_FALSE(fs::exists(file.parent_path()));
  ASSERT_TRUE(rate(track, 60));
  overwrite(file, 0, std::string(8192, '?'));
  const std::string damaged = contents(file);
  RatingsStore::readAhead(file, track, "mpv");
  EXPECT_EQ(contents(file), damaged);
}

}  // namespace
}  // namespace desktop
