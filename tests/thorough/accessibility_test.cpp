// The card as assistive technology finds it on the accessibility bus.
#include <gtest/gtest.h>

#include <QtDBus/QDBusObjectPath>

#include "tests/integration/fake_player.h"
#include "tests/integration/processes.h"
#include "tests/support/temporary_folder.h"

namespace tests {
namespace {

QVariantMap track(const char* title) {
  return {{"xesam:title", title},
          {"xesam:artist", QStringList{"Band"}},
          {"xesam:album", "Album"},
          {"mpris:trackid", QVariant::fromValue(QDBusObjectPath("/track/1"))},
          {"mpris:length", 200'000'000LL}};
}

TEST(Accessibility, EveryControlIsNamedOperatedAndToldOfOnce) {
  const PrivateBus bus;
  const Display display(bus);
  const TemporaryFolder home;
  Environment environment = display.environment();
  for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"}) {
    environment[name] = home.path().c_str();
  }
  environment["LANGUAGE"] = "en";
  environment["QT_LINUX_ACCESSIBILITY_ALWAYS_ON"] = "1";
  const Program accessibilityBus("/usr/libexec/at-spi-bus-launcher", {"--launch-immediately"},
                                 environment);
  ASSERT_TRUE(waitUntil([&] { return bus.hasName("org.a11y.Bus"); }));
  FakePlayer player(bus, "tape", {{"PlaybackStatus", "Playing"}, {"Metadata", track("Song")}});
  // Debian's own Python has the module.
  Program technology("/usr/bin/python3", {VIRELUNE_ACCESSIBILITY}, environment);
  ASSERT_EQ(technology.readLine(), "ready");
  const Program card(VIRELUNE_PROGRAM, {}, environment);
  for (const char* line :
       {"check box|About||inside", "push button|Close||inside", "label|Band — Album||inside",
        "push button|Artwork||inside", "label|Song||inside", "push button|Previous track||inside",
        "push button|Play or pause||inside", "push button|Next track||inside",
        "check box|Love||inside", "slider|Rating|0 of 5 stars|inside",
        "slider|Position|0:00 of 3:20|inside", "operated"}) {
    EXPECT_EQ(technology.readLine(), line);
  }
  EXPECT_TRUE(player.calls().contains("PlayPause"));
  EXPECT_TRUE(player.calls().contains("SetPosition /track/1 50000000"));
  ASSERT_EQ(technology.readLine(), "listening");
  player.signalChange({{"Volume", 0.5}});
  player.signalChange({{"Metadata", track("Other")}});
  player.setProperties({{"PlaybackStatus", "Playing"}, {"Metadata", track("Other")}});
  // The rating and the heart belong to the other track, and are told before or after its title.
  QStringList heard;
  for (QString line; !(line = technology.readLine()).isEmpty();) heard.append(line);
  EXPECT_EQ(heard.count("heard Other"), 1);
  EXPECT_FALSE(heard.contains("heard Position"));
}

}  // namespace
}  // namespace tests
