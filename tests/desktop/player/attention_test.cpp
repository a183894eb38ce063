#include "desktop/player/attention.h"

#include <gmock/gmock.h>

namespace desktop {
namespace {

using namespace std::chrono_literals;
using Time = PlayerAttention::Time;
using Due = PlayerAttention::Due;

/// Asks whatever is due from one time until another; the times of the questions, and of the silence
/// below zero.
std::vector<std::int64_t> asks(PlayerAttention& attention, Time from, Time until) {
  std::vector<std::int64_t> times;
  for (Time now = from; now <= until;) {
    const Due due = attention.due(now);
    if (due == Due::silence) times.push_back(-now.count());
    if (due == Due::question) {
      times.push_back(now.count());
      attention.asked(now);
    }
    const auto next = attention.dueTime();
    if (!next) break;
    now = std::max(now, *next);
  }
  return times;
}

PlayerAttention promptAt(Time now) {
  PlayerAttention attention;
  attention.asked(now - PlayerAttention::promptAnswer);
  attention.answered(now);
  return attention;
}

TEST(PlayerAttention, AMutePlayerIsAskedAgainAtGrowingDistancesAndAtOnceWhenItSpeaks) {
  PlayerAttention attention;
  EXPECT_EQ(attention.dueTime(), std::nullopt);
  EXPECT_TRUE(attention.heard(0ms)) << "before the first question";
  attention.asked(0ms);
  EXPECT_THAT(asks(attention, 1ms, 95s),
              testing::ElementsAre(1000, 3000, 7000, 15'000, 31'000, 61'000, 91'000));
  EXPECT_FALSE(attention.heard(91'100ms)) << "just asked";
  EXPECT_TRUE(attention.heard(91'101ms));
  attention.asked(91'101ms);
  EXPECT_THAT(asks(attention, 91'102ms, 95s), testing::ElementsAre(92'101, 94'101));
  EXPECT_TRUE(attention.isSilent());
  // It was mute for long, so its first answer does not count as prompt, the one after does.
  attention.answered(95s);
  EXPECT_FALSE(attention.isSilent() || attention.isPrompt());
  EXPECT_EQ(attention.dueTime(), 96s);
  EXPECT_EQ(attention.due(95'999ms), Due::nothing);
  EXPECT_EQ(attention.due(96s), Due::question);
  attention.asked(96s);
  attention.answered(96'100ms);
  EXPECT_TRUE(attention.isPrompt());
  EXPECT_EQ(attention.dueTime(), std::nullopt) << "asked when somebody wants to know";
  EXPECT_FALSE(attention.heard(97s));
}

TEST(PlayerAttention, OneSlowAnswerIsNoSilenceAndALostQuestionIsRepeated) {
  PlayerAttention attention = promptAt(10s);
  attention.asked(20s);
  attention.gaveUpWaiting();
  attention.asked(20'250ms);  // without waiting
  EXPECT_FALSE(attention.isPrompt() || attention.isSilent());
  EXPECT_FALSE(attention.heard(20'300ms)) << "the answer to come is as new";
  EXPECT_THAT(asks(attention, 20'251ms, 21'499ms), testing::ElementsAre(20'750, 21'250));
  attention.answered(21'499ms);
  EXPECT_FALSE(attention.isPrompt() || attention.isSilent());
  EXPECT_TRUE(attention.heard(21'600ms));
  EXPECT_EQ(attention.dueTime(), 22'499ms);
  // An answer with no question open says nothing about how fast it was.
  attention.answered(21'700ms);
  EXPECT_FALSE(attention.isPrompt());
}

TEST(PlayerAttention, NoAnswerIsSilenceInTheEndAndARefusalAtOnce) {
  PlayerAttention attention = promptAt(10s);
  attention.asked(20s);
  attention.gaveUpWaiting();
  EXPECT_THAT(asks(attention, 20'001ms, 25s),
              testing::ElementsAre(20'500, 21'000, -21'500, 21'500, 22'500, 24'500));
  EXPECT_TRUE(attention.isSilent());

  attention = promptAt(10s);
  attention.asked(20s);
  attention.refused(20s);
  EXPECT_TRUE(attention.isSilent());
  for (const Time time : {21s, 22s, 24s}) {
    EXPECT_EQ(attention.dueTime(), time);
    ASSERT_EQ(attention.due(time), Due::question);
    attention.asked(time);
    attention.refused(time);
  }
}

}  // namespace
}  // namespace desktop
