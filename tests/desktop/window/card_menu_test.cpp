#include "desktop/window/card_menu.h"
#include "desktop/window/card_style.h"

#include <gtest/gtest.h>

#include <QtCore/QCoreApplication>
#include <QtGui/QMouseEvent>
#include <filesystem>

#include "desktop/session/login_items.h"
#include "extensions/login_items.h"
#include "platform/application/bundle.h"
#include "platform/platform.h"
#include "tests/support/temporary_folder.h"

namespace {

class PlainWidget : public platform::NSViewController {
 public:
  bool init() override {
    setView(platform::make<platform::NSView>(platform::NSMakeRect(0, 0, 320, 64)));
    return true;
  }
};

class CardMenuTest : public testing::Test {
 protected:
  CardMenuTest() {
    platform_.graphics = &graphics_;
    platform_.mainBundle = &bundle_;
    platform_.scripting = &loginItems_;
  }

  static void send(QWindow& window, QEvent::Type type, QPointF place, Qt::MouseButton button) {
    QMouseEvent event(type, place, window.mapToGlobal(place), button, Qt::NoButton, {});
    QCoreApplication::sendEvent(&window, &event);
  }
  void openMenu() { send(window_, QEvent::MouseButtonPress, {50, 50}, Qt::RightButton); }
  void click(QPointF place) {
    send(menu_, QEvent::MouseButtonPress, place, Qt::LeftButton);
    send(menu_, QEvent::MouseButtonRelease, place, Qt::LeftButton);
  }
  void choose(std::size_t index) {
    openMenu();
    ASSERT_LT(index, menu_.items().size());
    click(menu_.itemPlace(index).center());
    EXPECT_FALSE(menu_.isVisible());
  }
  bool isChecked(std::size_t index) {
    openMenu();
    return menu_.items().at(index).isChecked;
  }

  enum : std::size_t { launchAtLogin, keepOnTop, close };

  tests::TemporaryFolder folder_;
  const std::filesystem::path autostart_ = folder_.path() / "autostart";
  platform::NSBundle bundle_{"/opt/share/virelune-widget", {}};
  desktop::LoginItems loginItems_{
      {autostart_, bundle_.bundlePath(), "/opt/bin/virelune-widget", "--wait-for-player"}, nullptr};
  platform::Platform platform_;
  platform::PlatformScope scope_{platform_};
  desktop::QtGraphics graphics_{desktop::opaqueLabelColor};
  desktop::Card card_{platform::make<PlainWidget>(), "Name"};
  desktop::CardSurface window_{card_, graphics_, "Name", false};
  const virelune::WidgetEntry widget_{
      {}, virelune::vl_isLaunchingAtLogin, virelune::vl_setLaunchingAtLogin, {}};
  desktop::CardMenu menu_{window_, graphics_, widget_};
};

TEST_F(CardMenuTest, SwitchesLaunchAtLoginInTheAutostartFolder) {
  EXPECT_FALSE(isChecked(launchAtLogin));
  EXPECT_FALSE(std::filesystem::exists(autostart_));
  choose(launchAtLogin);
  EXPECT_TRUE(std::filesystem::exists(autostart_ / "virelune-widget.desktop"));
  EXPECT_TRUE(isChecked(launchAtLogin));
  std::filesystem::remove_all(autostart_);
  EXPECT_FALSE(isChecked(launchAtLogin)) << "what the user changed elsewhere counts";
  choose(launchAtLogin);
  choose(launchAtLogin);
  EXPECT_TRUE(std::filesystem::is_empty(autostart_));
}

TEST_F(CardMenuTest, KeepsTheCardOnTopAndClosesIt) {
  window_.show();
  choose(keepOnTop);
  EXPECT_TRUE(window_.isOnTop());
  EXPECT_TRUE(isChecked(keepOnTop));
  choose(keepOnTop);
  EXPECT_FALSE(window_.isOnTop());
  EXPECT_TRUE(window_.isVisible());
  choose(close);
  EXPECT_FALSE(window_.isVisible());
}

TEST_F(CardMenuTest, ChoosesNothingByTheReleaseThatOpenedItNorByAClickElsewhere) {
  window_.show();
  openMenu();
  const QPointF item = menu_.itemPlace(close).center();
  send(menu_, QEvent::MouseButtonRelease, item, Qt::RightButton);
  EXPECT_TRUE(menu_.isVisible());
  click({-20, 10});
  EXPECT_FALSE(menu_.isVisible());
  openMenu();
  send(menu_, QEvent::MouseMove, item, Qt::NoButton);
  send(menu_, QEvent::MouseMove, {1, 1}, Qt::NoButton);
  send(menu_, QEvent::MouseButtonRelease, {1, 1}, Qt::RightButton);
  EXPECT_TRUE(window_.isVisible()) << "the pointer had left the item";
  send(menu_, QEvent::MouseMove, item, Qt::NoButton);
  send(menu_, QEvent::MouseButtonRelease, item, Qt::RightButton);
  EXPECT_FALSE(window_.isVisible()) << "pressed, drawn to the item and let go";
}

}  // namespace
