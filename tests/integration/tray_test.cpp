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
  /// Asks the icon to do something at a place of the screen.
  void ask(const char* member) {
    auto message = QDBusMessage::createMethodCall(item, "/StatusNotifierItem",
                                                  "org.kde.StatusNotifierItem", member);
    bus_.call(message << 0 << 0);
  }

  QString item;  ///< the icon's bus name; empty without one

 public slots:
  void RegisterStatusNotifierItem(const QString& service) { item = service; }

 private:
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
  FakePlayer player_{bus_, "any", {{"PlaybackStatus", "Playing"}}};

 private:
  const TemporaryFolder home_;
  const Display display_{bus_};
  Environment environment_;

 protected:
  std::optional<Program> program_;
};

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
