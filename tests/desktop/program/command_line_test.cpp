#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <vector>

#include "desktop/program/command_line.h"
#include "desktop/window/placement.h"
#include "tests/support/temporary_folder.h"

namespace {

using desktop::CommandLine;

auto parsed(const std::vector<const char*>& arguments) {
  return desktop::parseCommandLine(arguments);
}

TEST(CommandLine, ReadsValuesInBothSpellings) {
  const CommandLine line = *parsed(
      {"--player", "--x", "--player", "mpv", "--snapshot=a=b.png", "--scale", "1.5", "--on-top"});
  EXPECT_EQ(line.player, "mpv");
  EXPECT_EQ(line.snapshot, "a=b.png");
  EXPECT_EQ(line.scale, 1.5);
  EXPECT_TRUE(line.onTop);
  EXPECT_FALSE(line.demo);
  for (const char* host : {"127.0.0.1:8080", "radio.example.org", "[::1]:80"}) {
    EXPECT_EQ(parsed({"--stream-host", host})->streamHost, host);
  }
}

TEST(CommandLine, NamesWhatItDoesNotUnderstand) {
  struct Case {
    std::vector<const char*> arguments;
    const char* message;
  };
  for (const Case& c : std::vector<Case>{
           {{"--frobnicate"}, "unknown option \"--frobnicate\""},
           {{"-h"}, "unknown option \"-h\""},
           {{"song.mp3"}, "unexpected \"song.mp3\""},
           {{"--player"}, "--player needs a value"},
           {{"--tour=", "x"}, "--tour needs a value"},
           {{"--tour", ""}, "--tour needs a value"},
           {{"--stream-host=a:99999"}, "--stream-host takes a host or host:port, not \"a:99999\""},
           {{"--store-host", ":80"}, "--store-host takes a host or host:port, not \":80\""},
           {{"--store-host", "me@a"}, "--store-host takes a host or host:port, not \"me@a\""},
           {{"--demo=yes"}, "--demo takes no value"},
           {{"--scale", "0.5"}, "--scale takes a number from 1 to 4, not \"0.5\""},
           {{"--scale", "2x"}, "--scale takes a number from 1 to 4, not \"2x\""},
           {{"--scale", "nan"}, "--scale takes a number from 1 to 4, not \"nan\""},
           {{"--wait-for-player", "--demo"}, "--wait-for-player and --demo exclude each other"},
           {{"--player", "a", "--demo"}, "--player and --demo exclude each other"}}) {
    const auto result = parsed(c.arguments);
    ASSERT_FALSE(result) << c.message;
    EXPECT_EQ(result.problem().text, c.message);
  }
}

TEST(WindowPlacement, KeepsTheWholeCardOnTheNearestScreen) {
  const QList<QRect> screens{QRect(0, 30, 1920, 1050), QRect(1920, 0, 1280, 1024)};
  const QSize card(320, 88);
  struct Case {
    QPoint wanted, expected;
  };
  for (const Case& c :
       {Case{{100, 200}, {100, 200}}, Case{{-50, 0}, {0, 30}}, Case{{3100, 500}, {2880, 500}},
        Case{{1800, 1060}, {1920, 936}}, Case{{-9000, -9000}, {0, 30}}}) {
    EXPECT_EQ(desktop::positionOnScreens(c.wanted, card, screens), c.expected);
  }
  EXPECT_EQ(desktop::positionOnScreens({7, 8}, card, {}), QPoint(7, 8));
  const QList<QRect> tiny{QRect(10, 10, 200, 50)};
  EXPECT_EQ(desktop::positionOnScreens({500, 500}, card, tiny), QPoint(10, 10));
}

TEST(WindowPlacement, IsRememberedAndRubbishIsNot) {
  const tests::TemporaryFolder folder;
  const auto file = folder.path() / "new" / "position";
  EXPECT_EQ(desktop::readPosition(file), std::nullopt);
  ASSERT_TRUE(desktop::writePosition(file, {-12, 345}));
  EXPECT_EQ(desktop::readPosition(file), QPoint(-12, 345));
  for (const char* rubbish : {"", "12", "1 2 3", "a b", "99999999999 1", "2147483647 0"}) {
    std::ofstream(file) << rubbish;
    EXPECT_EQ(desktop::readPosition(file), std::nullopt) << rubbish;
  }
}

}  // namespace
