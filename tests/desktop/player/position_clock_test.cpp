#include "desktop/player/position_clock.h"

#include <gtest/gtest.h>

namespace desktop {
namespace {

using namespace std::chrono_literals;

/// Plays from 10 s on at this rate, told at once.
PositionClock playing(double rate = 1) {
  PositionClock clock;
  clock.run(rate, 0, 0ms);
  clock.told(10, 0ms);
  return clock;
}

TEST(PositionClock, GoesOnAsThePlayerDoesAndIsAskedForUntilAnAnswerAgrees) {
  for (const double rate : {0.0, 1.0, 1.5}) {
    PositionClock clock = playing(rate);
    EXPECT_DOUBLE_EQ(clock.at(1s), 10 + rate);
    EXPECT_FALSE(clock.isDoubtful(19ms)) << "what is asked for together is asked for once";
    EXPECT_TRUE(clock.isDoubtful(1s));
    clock.told(10 + 0.4 * rate, 400ms);
    EXPECT_TRUE(clock.isDoubtful(1s)) << "too early to say";
    clock.told(10.3 + rate, 1s);
    EXPECT_FALSE(clock.isDoubtful(10s));
    EXPECT_DOUBLE_EQ(clock.at(3s), 10.3 + 3 * rate);
  }
}

TEST(PositionClock, OneThatWasElsewhereWithoutAWordIsAskedFromThenOn) {
  for (const double elsewhere : {10.0, 11.4, 12.6, 90.0}) {
    PositionClock clock = playing();
    clock.told(11, 1s);
    clock.told(elsewhere, 2s);  // where 12 would agree
    clock.told(elsewhere + 1, 3s);
    EXPECT_TRUE(clock.isDoubtful(4s)) << elsewhere;
    clock.unsettle();
    clock.told(elsewhere + 2, 4s);
    clock.told(elsewhere + 3, 5s);
    EXPECT_TRUE(clock.isDoubtful(6s)) << elsewhere;
    clock.reset();
    EXPECT_EQ(clock.at(7s), 0);
  }
}

TEST(PositionClock, AfterAWordAJumpIsNoSurpriseAndHasToProveItselfAgain) {
  PositionClock clock = playing();
  clock.told(11, 1s);
  clock.unsettle();
  EXPECT_TRUE(clock.isDoubtful(1s));
  EXPECT_DOUBLE_EQ(clock.at(2s), 12) << "while there is no answer";
  clock.told(100, 2s);
  EXPECT_DOUBLE_EQ(clock.at(2s), 100) << "the answer, not what was said a moment ago";
  EXPECT_TRUE(clock.isDoubtful(3s)) << "it may be on its way to where it was sent";
  clock.told(3, 3s);
  EXPECT_TRUE(clock.isDoubtful(4s)) << "the first answer was the track before's";
  clock.told(4, 4s);
  EXPECT_FALSE(clock.isDoubtful(5s));
}

TEST(PositionClock, StopsAndGoesWhereItStandsAndAnswersOneMomentAlike) {
  PositionClock clock = playing();
  clock.run(0, 0, 2s);
  EXPECT_DOUBLE_EQ(clock.at(9s), 12);
  clock.run(2, 0, 9s);
  EXPECT_DOUBLE_EQ(clock.at(10s), 14);
  EXPECT_DOUBLE_EQ(clock.at(10s + 19ms), 14);
  EXPECT_DOUBLE_EQ(clock.at(10s + 20ms), 14.04);
  clock.run(2, 0, 11s);
  EXPECT_DOUBLE_EQ(clock.at(12s), 18) << "the same rate once more changes nothing";
}

TEST(PositionClock, EndsWithItsTrackUnlessThePlayerItselfIsBeyondThat) {
  PositionClock clock = playing();
  clock.run(1, 12, 1s);
  EXPECT_DOUBLE_EQ(clock.at(2s), 12);
  EXPECT_DOUBLE_EQ(clock.at(9s), 12);
  clock.run(1, 15, 9s);
  EXPECT_DOUBLE_EQ(clock.at(10s), 13) << "the end moved, and it went on from the old one";
  clock.told(20, 11s);
  EXPECT_DOUBLE_EQ(clock.at(12s), 20);
}

}  // namespace
}  // namespace desktop
