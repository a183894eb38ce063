// The icon in the status area and the card that it hides and brings back.
#include <gtest/gtest.h>
#include <signal.h>

#include <QtCore/QPoint>
#include <QtDBus/QDBusConnectionInterface>
#include <QtDBus/QDBusMessage>

#include "desktop/remote/names.h"
#include "tests/integration/fake_player.h"
#include "tests/support/temporary_folder.h"

namespace tests {
namespace {

/// Where icons announce themselves (freedesktop.org, StatusNotifierItem).
class FakeStatusArea final : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierWatcher")
  Q_PROPERTY(bool IsStatusNotifierHostRegistered READ hasHost)
  Q_PROPERTY(int ProtocolVersion READ version)

 public:
  explicit FakeStatusArea(QDBusConnection bus) : bus_(bus) {
    bus_.registerObject("/StatusNotifierWatcher", this,
                        QDBusConnection::ExportAllSlots | QDBusConnection::ExportAllProperties);
    bus_.registerService(name);
  }
  ~FakeStatusArea() override { bus_.unregisterService(name); }

  bool hasHost() const { return true; }
  int version() const { return 0; }
  /// Asks the icon to do something at a place of the screen, or with whatever arguments it takes.
  void ask(const char* member, const QVariantList& arguments = {0, 0}) {
    call("/StatusNotifierItem", "org.kde.StatusNotifierItem", member, arguments);
  }
  QString toolTip() {
    const auto reply = call("/StatusNotifierItem", "org.freedesktop.DBus.Properties", "Get",
                            {"org.kde.StatusNotifierItem", "ToolTip"});
    const auto value = reply.arguments().value(0).value<QDBusVariant>();
    const auto toolTip = value.variant().value<QDBusArgument>();
    QString iconName, title, text;
    QVariantList icon;
    toolTip.beginStructure();
    toolTip >> iconName >> icon >> title >> text;
    return text;
  }
  /// The menu's items by their labels.
  QMap<QString, int> menu() {
    const auto reply = callMenu("GetLayout", {0, -1, QStringList()});
    const auto root = reply.arguments().value(1).value<QDBusArgument>();
    int id = 0;
    QVariantMap properties;
    QVariantList children;
    root.beginStructure();
    root >> id >> properties >> children;
    QMap<QString, int> items;
    for (const QVariant& child : children) {
      const auto below = child.value<QDBusArgument>();
      below.beginStructure();
      below >> id >> properties;
      items[properties.value("label").toString()] = id;
    }
    return items;
  }
  void click(int id) {
    callMenu("Event", {id, "clicked", QVariant::fromValue(QDBusVariant(0)), 0U});
  }
  bool isOn(int id) {
    const auto reply = callMenu("GetProperty", {id, "toggle-state"});
    return reply.arguments().value(0).value<QDBusVariant>().variant().toInt() == 1;
  }

  QString item;  ///< the icon's bus name; empty without one

 public slots:
  void RegisterStatusNotifierItem(const QString& service) { item = service; }

 private:
  QDBusMessage call(const char* path, const char* interface, const char* member,
                    const QVariantList& arguments) {
    auto message = QDBusMessage::createMethodCall(item, path, interface, member);
    message.setArguments(arguments);
    return bus_.call(message);
  }
  QDBusMessage callMenu(const char* member, const QVariantList& arguments) {
    return call("/MenuBar", "com.canonical.dbusmenu", member, arguments);
  }

  static inline const QString name = "org.kde.StatusNotifierWatcher";
  QDBusConnection bus_;
};

class Tray : public testing::Test {
 protected:
  Tray() : environment_(display_.environment()) {
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"}) {
      environment_[name] = home_.path().c_str();
    }
    program_.emplace(VIRELUNE_PROGRAM, QStringList{"--scale=1"}, environment_);
    display_.window("virelune-widget");
  }

  /// Empty when it is done.
  QString act(const char* action, const char* argument = "") const {
    auto message = QDBusMessage::createMethodCall(desktop::cardService, desktop::cardObject,
                                                  desktop::publicInterface, "Act");
    return bus_.connection().call(message << action << argument).errorName();
  }
  bool waitForCard(bool shown) const {
    return waitUntil([&] {
      const auto windows = outputOf(
          "xdotool", {"search", "--onlyvisible", "--class", "virelune-widget"}, environment_);
      return windows.isEmpty() != shown;
    });
  }

  const PrivateBus bus_;
  FakePlayer player_{bus_,
                     "any",
                     {{"PlaybackStatus", "Playing"},
                      {"Volume", 0.2},
                      {"Metadata", QVariantMap{{"xesam:title", "You & <me>"}}}}};

 private:
  const TemporaryFolder home_;
  const Display display_{bus_};
  Environment environment_;

 protected:
  std::optional<Program> program_;
};

TEST_F(Tray, TellsWhatPlaysTurnsTheVolumeAndOperatesThePlayerFromItsMenu) {
  FakeStatusArea area(bus_.connection());
  EXPECT_EQ(act("status-icon", "on"), "");
  ASSERT_TRUE(waitUntil([&] { return !area.item.isEmpty(); }));
  EXPECT_TRUE(waitUntil([&] { return area.toolTip() == "You &amp; &lt;me&gt;"; }));
  const auto wasTurnedTo = [this](const QString& volume) {
    return waitUntil([&] {
      return player_.calls().contains("Set org.mpris.MediaPlayer2.Player Volume " + volume);
    });
  };
  area.ask("Scroll", {-2, "vertical"});
  EXPECT_TRUE(wasTurnedTo("0.25")) << "upwards, where a status area counts lines";
  area.ask("Scroll", {240, "horizontal"});
  area.ask("Scroll", {-240, "Vertical"});
  EXPECT_TRUE(wasTurnedTo("0.15")) << "two notches down, where it counts an eighth of a degree";
  EXPECT_EQ(player_.calls().size(), 2);

  ASSERT_TRUE(waitUntil([&] { return area.menu().contains("Next track"); }));
  area.click(area.menu().value("Next track"));
  EXPECT_TRUE(waitUntil([&] { return player_.calls().contains("Next"); }));
  const int switched = area.menu().value("Hide while nothing plays");
  EXPECT_FALSE(area.isOn(switched));
  area.click(switched);
  EXPECT_TRUE(waitUntil([&] { return area.isOn(switched); })) << "the menu follows";
}

TEST_F(Tray, HidesTheCardAndBringsItBackWhateverBecomesOfIt) {
  EXPECT_EQ(act("status-icon", "on"), desktop::impossibleError) << "there is nowhere to put it";
  std::optional<FakeStatusArea> area(bus_.connection());
  EXPECT_EQ(act("status-icon", "on"), "");
  ASSERT_TRUE(waitUntil([&] { return !area->item.isEmpty(); }));
  area->ask("Activate");
  EXPECT_TRUE(waitForCard(false));
  area->ask("Activate");
  EXPECT_TRUE(waitForCard(true));
  area->ask("SecondaryActivate");
  EXPECT_TRUE(waitUntil([&] { return player_.calls().contains("PlayPause"); }));
  EXPECT_EQ(act("close"), "");
  EXPECT_TRUE(waitForCard(false));
  area.reset();
  EXPECT_TRUE(waitForCard(true)) << "nothing else could bring it back";

  area.emplace(bus_.connection());
  ASSERT_TRUE(waitUntil([&] { return !area->item.isEmpty(); })) << "a status area that came later";
  EXPECT_EQ(act("close"), "");
  EXPECT_TRUE(waitForCard(false));
  const QString item = area->item;
  EXPECT_EQ(act("quit"), "");
  EXPECT_EQ(program_->exitStatus(), 0);
  EXPECT_TRUE(waitUntil([&] { return !bus_.hasName(item); })) << "it goes with the card";
}

}  // namespace
}  // namespace tests

#include "tray_test.moc"
