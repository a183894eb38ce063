// The program under a Wayland compositor, which is nested in an X display so that a pointer can be
// moved over it.
#include <gmock/gmock.h>
#include <sys/stat.h>
#include <unistd.h>

#include <QtCore/QJsonArray>
#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QRect>
#include <QtCore/QRegularExpression>
#include <fstream>
#include <sstream>

#include "tests/integration/fake_player.h"
#include "tests/support/temporary_folder.h"

namespace tests {
namespace {

class Wayland : public testing::Test {
 protected:
  Wayland() {
    const auto& folder = folder_.path();
    std::ofstream(folder / "config") << "output * resolution 1000x600 position 0,0\n"
                                        "default_border none\nfocus_follows_mouse no\n"
                                        "for_window [app_id=\".*\"] floating enable\n"
                                        "xwayland disable\n";
    Environment environment = display_.environment();
    environment["XDG_RUNTIME_DIR"] = environment["HOME"] = folder.c_str();
    environment["WLR_BACKENDS"] = "x11";
    environment["WLR_RENDERER"] = "pixman";
    environment["SWAYSOCK"] = (folder / "ipc").c_str();
    QStringList command{"sway", "-c", (folder / "config").c_str()};
    // It does not run for root.
    if (::geteuid() == 0) {
      command =
          QStringList{"setpriv", "--reuid=65534", "--regid=65534", "--clear-groups"} + command;
      EXPECT_EQ(::chown(folder.c_str(), 65534, 65534), 0);
    }
    ::chmod(folder.c_str(), S_IRWXU);
    compositor_.emplace(command.takeFirst(), command, environment);
    environment_ = bus.environment();
    environment_["XDG_RUNTIME_DIR"] = folder.c_str();
    environment_["WAYLAND_DISPLAY"] = "wayland-1";
    environment_["QT_QPA_PLATFORM"] = "wayland";
    environment_["ASAN_OPTIONS"] = "detect_leaks=0";  // libwayland's, at its end
    environment_["SWAYSOCK"] = (folder / "ipc").c_str();
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"}) {
      environment_[name] = folder.c_str();
    }
    waitUntil([&] { return std::filesystem::exists(folder / "wayland-1"); });
  }

  std::unique_ptr<Program> start(const QStringList& arguments = {}) const {
    return std::make_unique<Program>(VIRELUNE_PROGRAM, arguments, environment_);
  }
  /// Where the card is; empty when it is not shown.
  QRect card() const {
    const auto tree = outputOf("swaymsg", {"--raw", "--type", "get_tree"}, environment_);
    return placeIn(QJsonDocument::fromJson(tree.toUtf8()).object());
  }
  /// Does this with the pointer at a place of the card: "click 1", "mousedown 1".
  void point(QPoint place, const char* action = "") const {
    const QPoint at = card().topLeft() + place;
    display_.xdotool(QString("mousemove %1 %2 %3").arg(at.x()).arg(at.y()).arg(action).trimmed());
  }
  void press(const QString& keys) const { display_.xdotool("key " + keys); }

  const PrivateBus bus;

 protected:
  const TemporaryFolder folder_;
  const Display display_{bus};
  Environment environment_;

 private:
  static QRect placeIn(const QJsonObject& node) {
    if (node["app_id"] == "org.virelune.Virelune.Widget") {
      const QJsonObject rectangle = node["rect"].toObject();
      return {rectangle["x"].toInt(), rectangle["y"].toInt(), rectangle["width"].toInt(),
              rectangle["height"].toInt()};
    }
    for (const char* kind : {"nodes", "floating_nodes"}) {
      for (const auto& child : node[kind].toArray()) {
        if (const QRect found = placeIn(child.toObject()); !found.isEmpty()) return found;
      }
    }
    return {};
  }

  std::optional<Program> compositor_;
};

TEST_F(Wayland, TheCardIsOperatedMovedRaisedAndClosed) {
  FakePlayer player(bus, "player",
                    {{"PlaybackStatus", "Playing"},
                     {"CanSeek", true},
                     {"Metadata", QVariantMap{{"xesam:title", "Song"},
                                              {"mpris:trackid", "/track/1"},
                                              {"mpris:length", qlonglong{100'000'000}}}}});
  const auto program = start();
  ASSERT_TRUE(waitUntil([&] { return card().size() == QSize(320, 88); }));
  EXPECT_TRUE(waitUntil([&] {
    point({300, 53}, "click 1");
    return player.calls().contains("Next");
  }));
  // The bar takes a drag to its middle for half of the track.
  point({40, 86}, "mousedown 1");
  point({100, 86});
  point({160, 86});
  point({160, 86}, "mouseup 1");
  EXPECT_TRUE(waitUntil([&] {
    return !player.calls().filter(QRegularExpression("^SetPosition /track/1 (49|50|51)")).isEmpty();
  })) << player.calls().join(", ").toStdString();
  const QPoint before = card().topLeft();
  point({40, 12}, "mousedown 1");
  point({60, 40});
  point({80, 60});
  point({90, 70});
  point({90, 70}, "mouseup 1");
  EXPECT_TRUE(waitUntil([&] { return card().topLeft() != before; }));
  EXPECT_EQ(card().size(), QSize(320, 88));
  EXPECT_EQ(start()->exitStatus(), 0) << "a second start";
  point({305, 12}, "click 1");
  EXPECT_EQ(program->exitStatus(), 0);
  EXPECT_TRUE(card().isEmpty());

  const auto again = start();
  ASSERT_TRUE(waitUntil([&] { return !card().isEmpty(); }));
  EXPECT_TRUE(waitUntil([&] {
    point({160, 44}, "click 3");
    press("Up Return");
    return !bus.hasName("org.virelune.Virelune.Widget");
  })) << "the menu's last entry";
  EXPECT_EQ(again->exitStatus(), 0);
}

TEST_F(Wayland, OnTopTheCardIsPutWhereItWasAndMovedByItsHeader) {
  FakePlayer player(bus, "player",
                    {{"PlaybackStatus", "Playing"},
                     {"Metadata", QVariantMap{{"xesam:title", "Song"}, {"mpris:trackid", "/1"}}}});
  const auto file = folder_.path() / "virelune-widget" / "settings.ini";
  std::filesystem::create_directory(file.parent_path());
  std::ofstream(file) << "[Place]\nLast=100 400\n";
  const auto at = [&](int x, int y, const QString& action) {
    display_.xdotool(QString("mousemove %1 %2 %3").arg(x).arg(y).arg(action).trimmed());
  };
  const auto plays = [&](int x, int y) {
    const auto calls = player.calls().size();
    return waitUntil([&] {
      at(x + 300, y + 53, "click 1");
      return player.calls().size() > calls;
    });
  };
  const auto program = start({"--on-top"});
  const auto modules = std::filesystem::path(VIRELUNE_PROGRAM).parent_path() / "../lib";
  if (!std::filesystem::exists(modules / "virelune-widget" / "layer-shell.so")) {
    EXPECT_TRUE(waitUntil([&] { return !card().isEmpty(); })) << "a window like others";
    GTEST_SKIP() << "built without LayerShellQt";
  }
  EXPECT_TRUE(plays(100, 400));
  at(140, 412, "mousedown 1");
  // As far as the screen goes: the pointer takes it along from where it turns.
  for (const int y : {380, 300, 200, 80, 5}) at(200, y, "");
  at(240, 5, "mouseup 1");
  EXPECT_TRUE(plays(200, 0));
  EXPECT_TRUE(card().isEmpty()) << "a window like others";
  at(300, 40, "click 3");
  press("Up Up Up Up Up Return");
  EXPECT_TRUE(waitUntil([&] { return card().size() == QSize(320, 88); })) << "no longer on top";
  point({305, 12}, "click 1");
  EXPECT_EQ(program->exitStatus(), 0);
  std::stringstream text;
  text << std::ifstream(file).rdbuf();
  EXPECT_THAT(text.str(), testing::HasSubstr("Last=200 0"));
}

}  // namespace
}  // namespace tests
