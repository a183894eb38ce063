// The program among what comes and goes in a session: players, other starts of it, the bus, the
// display, and its own end.
#include <gtest/gtest.h>

#include "desktop/window/card_style.h"
#include "tests/integration/fake_player.h"

namespace tests {
namespace {

constexpr double trackHeight = 64 + desktop::cardHeaderHeight;
constexpr double informationHeight = 30 + desktop::cardHeaderHeight;

QVariantMap song(const char* status) {
  return {{"PlaybackStatus", status},
          {"CanSeek", true},
          {"Metadata", QVariantMap{{"xesam:title", "Song"},
                                   {"mpris:trackid", "/track/1"},
                                   {"mpris:length", qlonglong{40'000'000}}}}};
}

struct Session : testing::Test {
  std::unique_ptr<Program> start(const QStringList& arguments = {}) const {
    return std::make_unique<Program>(VIRELUNE_PROGRAM, QStringList{"--scale=1"} + arguments,
                                     environment_);
  }
  void open(const QStringList& arguments = {}) {
    program = start(arguments);
    window = display->window("virelune-widget");
    ASSERT_FALSE(window.isEmpty());
  }
  /// Moves the card, which has heard of it then.
  void move(const QString& place) const {
    display->xdotool(QString("windowmove --sync %1 %2").arg(window, place));
    EXPECT_EQ(start()->exitStatus(), 0);  // asks the card something, and waits for the answer
  }
  bool waitForHeight(double height) const {
    return waitUntil([&] {
      return display->xdotool("getwindowgeometry " + window).section('x', -1).toDouble() == height;
    });
  }
  /// Clicks there, counted from the upper left, until the player hears this.
  bool commands(const FakePlayer& player, const char* call = "Next",
                const char* place = "300 53") const {
    return waitUntil([&] {
      click(place);
      return !player.calls().filter(call).isEmpty();
    });
  }
  void point(const char* place, const char* action = "") const {
    display->xdotool(QString("mousemove --window %1 %2%3").arg(window, place, action));
  }
  void click(const char* place) const { point(place, " click 1"); }
  bool remembers(const std::string& text) const {
    return waitUntil([&] {
      return contents(home_.path() / "virelune-widget/settings.ini").find(text) !=
             std::string::npos;
    });
  }

  const PrivateBus bus;
  std::unique_ptr<Display> display = std::make_unique<Display>(bus);
  std::unique_ptr<Program> program;
  QString window;

 private:
  const TemporaryFolder home_;
  const Environment environment_ = atHome(display->environment(), home_);
};

TEST_F(Session, ClicksCommandThePlayerAndEdit) {
  FakePlayer player(bus, "any", song("Playing"));
  open();
  ASSERT_TRUE(waitForHeight(trackHeight));
  for (const auto& [place, call] : {std::pair("280 53", "PlayPause"),
                                    {"300 53", "Next"},
                                    {"260 53", "Previous"},
                                    {"240 87", "SetPosition /track/1 30"}}) {
    EXPECT_TRUE(commands(player, call, place)) << call;
  }
  const auto waitForWindows = [&](qsizetype count, std::chrono::seconds patience) {
    return waitUntil(
        [&] {
          return outputOf("xdotool", {"search", "--onlyvisible", "--class", "virelune-widget"},
                          display->environment())
                     .split('\n')
                     .size() == count;
        },
        patience);
  };
  auto titled = song("Playing");
  titled["Metadata"] = QVariantMap{{"xesam:title", QString("Long ").repeated(30)}};
  player.tell(titled);
  EXPECT_TRUE(waitUntil([&] {
    point("130 33");
    point("120 53");
    return waitForWindows(2, std::chrono::seconds(2));
  })) << "the whole title below the pointer";
  point("280 53");
  EXPECT_TRUE(waitForWindows(1, std::chrono::seconds(10)));
  player.tell(song("Stopped"));
  EXPECT_TRUE(waitForHeight(informationHeight));
  for (const double height : {trackHeight, informationHeight}) {
    click("285 12");  // the edit toggle
    EXPECT_TRUE(waitForHeight(height));
  }
}

TEST_F(Session, ASecondStartHandsOnWhatItWantsToTheCardThatRuns) {
  FakePlayer first(bus, "first", song("Playing"));
  FakePlayer second(bus, "second", song("Paused"));
  open();
  EXPECT_EQ(start({"--player=second", "--on-top"})->exitStatus(), 0);
  EXPECT_TRUE(remembers("Followed=second"));
  EXPECT_TRUE(remembers("OnTop=true"));
  EXPECT_TRUE(commands(second));
  EXPECT_TRUE(first.calls().isEmpty());
  const auto another = start({"--new"});
  EXPECT_TRUE(waitUntil([&] { return bus.hasName("org.virelune.Virelune.Widget.Card2"); }));
  EXPECT_EQ(start({"--demo"})->exitStatus(), 0);
  second.leaveBus();
  first.leaveBus();
  EXPECT_TRUE(waitForHeight(trackHeight)) << "the demo player plays";
  program->send(SIGSTOP);
  EXPECT_EQ(start()->exitStatus(), 1) << "a card that hangs is not taken for none";
}

TEST_F(Session, ComesWholeOntoTheScreensThatAreLeftAndBackWhenItsOwnReturns) {
  open({"--demo"});
  const auto monitors = [&](std::initializer_list<const char*> commands) {
    for (const char* command : commands) {
      outputOf("xrandr", QString(command).split(' '), display->environment());
    }
  };
  const auto waitForPlace = [&](const QString& place) {
    return waitUntil([&] {
      return outputOf("xdotool", {"getwindowgeometry", window}, display->environment())
          .contains("Position: " + place + ' ');
    });
  };
  const char* left = "--setmonitor L 500/300x768/400+0+0 screen";
  const char* right = "--setmonitor R 524/300x768/400+500+0 none";
  monitors({left, right});
  ASSERT_TRUE(waitForPlace("156,24")) << "the corner of the first";
  move("600 300");
  EXPECT_TRUE(remembers("Last=600 300")) << "while it runs";
  monitors({"--delmonitor R"});
  EXPECT_TRUE(waitForPlace("180,300"));
  monitors({right});
  EXPECT_TRUE(waitForPlace("600,300"));
  EXPECT_TRUE(remembers("Last=600 300")) << "which the user chose";
}

TEST_F(Session, EndsWithAllThatItHasToKeepWhateverTakesItsGroundAway) {
  for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
    open();
    const QString place = QString::number(100 + signal);
    move(place + " 77");
    program->send(signal);
    EXPECT_EQ(program->exitStatus(), 0);
    EXPECT_TRUE(remembers("Last=" + place.toStdString() + " 77")) << signal;
  }
  open();
  move("55 66");
  display.reset();
  EXPECT_EQ(program->exitStatus(), 1);
  EXPECT_TRUE(remembers("Last=55 66"));
  program = start();
  EXPECT_EQ(program->exitStatus(), 1) << "there is no such display any more";
}

}  // namespace
}  // namespace tests
