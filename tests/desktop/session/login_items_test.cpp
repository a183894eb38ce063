#include "desktop/session/login_items.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "extensions/login_items.h"
#include "platform/application/bundle.h"
#include "platform/platform.h"
#include "tests/support/temporary_folder.h"

namespace desktop {
namespace {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;

/// Login items through the widget's own operations.
struct LoginItemsTest : testing::Test {
  LoginItemsTest() {
    platform.scripting = &transport;
    platform.mainBundle = &bundle;
  }

  void write(const std::string& name, const std::string& keys) const {
    fs::create_directories(folder);
    std::ofstream(folder / name) << "[Desktop Entry]\n" << keys;
  }
  std::map<std::string, std::string> files() const {
    std::map<std::string, std::string> all;
    if (!fs::exists(folder)) return all;
    for (const auto& entry : fs::directory_iterator(folder)) {
      all[entry.path().filename()] = tests::contents(entry.path());
    }
    return all;
  }
  Strings paths() const {
    const auto items = virelune::vl_SystemEventsApplication()->loginItems();
    Strings all;
    for (std::int64_t i = 0; i < items.count(); ++i) {
      all.push_back(items.objectAtIndex(i)->path().value_or("none"));
    }
    return all;
  }
  tests::TemporaryFolder temporary;
  const fs::path folder = temporary.path() / "config/autostart";
  const std::string ownBundle = "/opt/virelune/share/virelune-widget";
  const std::string executable = "/opt/virelune/bin/virelune-widget";
  LoginItems transport{{folder, ownBundle, executable, "--wait"}, nullptr};
  platform::NSBundle bundle{ownBundle, {}};
  platform::Platform platform;
  platform::PlatformScope scope{platform};
};

TEST_F(LoginItemsTest, LaunchAtLoginSwitchesOnAndOffAmongForeignEntries) {
  write("z.desktop", "Type=Application\nExec=/usr/bin/z --quiet %U\n");
  write("a.desktop", "Type=Application\nExec=\"/opt/a b/run\" \"x y\"\n# kept\n");
  const auto before = files();
  EXPECT_TRUE(virelune::vl_setLaunchingAtLogin(true));
  EXPECT_TRUE(virelune::vl_isLaunchingAtLogin());
  EXPECT_EQ(paths(), (Strings{"/opt/a b/run", "/usr/bin/z", ownBundle}));
  EXPECT_NE(
      files().at("virelune-widget.desktop").find("\nExec=\"" + executable + "\" \"--wait\"\n"),
      std::string::npos)
      << "the session starts the program, not its bundle";
  EXPECT_TRUE(virelune::vl_setLaunchingAtLogin(false));
  EXPECT_EQ(files(), before);
}

TEST_F(LoginItemsTest, AnItemFollowsTheProgramThatHasMovedAndOthersStay) {
  const fs::path there = temporary.path() / "virelune-widget";
  std::ofstream(there) << "another installation";
  write("old.desktop",
        "Type=Application\nExec=\"/gone/virelune-widget\" \"--old\"\n"
        "X-Virelune-LoginItem=4\n");
  write("there.desktop", "Type=Application\nExec=" + there.string() + "\nX-Virelune-LoginItem=2\n");
  write("theirs.desktop", "Type=Application\nExec=/gone/virelune-widget\n");
  transport.followMovedProgram();
  EXPECT_EQ(paths(), (Strings{"/gone/virelune-widget", there, ownBundle}));
  EXPECT_NE(files().at("old.desktop").find("Exec=\"" + executable + "\" \"--wait\"\n"),
            std::string::npos);
}

TEST_F(LoginItemsTest, OddPathsComeBackAsTheyWereAndEndNoLine) {
  for (const std::string path : {"/a b/c", "/%f/%%/100%", "/q\"u'o`t$e\\d", "/line\nExec=evil\r\t",
                                 "/\xC3\xA9/;#=", "/ ", "/back\\n\\s\\"}) {
    ASSERT_TRUE(virelune::vl_addLoginItemWithPath_hidden(path, true)) << path;
    EXPECT_EQ(paths(), Strings{path});
    const std::string text = files().begin()->second;
    EXPECT_EQ(text.find("\nExec="), text.rfind("\nExec=")) << text;
    EXPECT_TRUE(virelune::vl_removeLoginItemWithPath(path));
    EXPECT_TRUE(files().empty());
  }
  EXPECT_FALSE(virelune::vl_addLoginItemWithPath_hidden(std::string("/a\0b", 4), true));
  EXPECT_FALSE(virelune::vl_addLoginItemWithPath_hidden("/not \xFF text", true));
}

TEST_F(LoginItemsTest, OnlyWhatTheSessionStartsIsALoginItem) {
  for (const auto& [name, keys] :
       {std::pair("deleted.desktop", "Type=Application\nExec=x\nHidden=true\n"),
        {"off.desktop", "Type=Application\nExec=x\nX-GNOME-Autostart-enabled=false\n"},
        {"link.desktop", "Type=Link\nURL=https://host/\n"},
        {"empty.desktop", "Type=Application\n"},
        {"open.desktop", "Type=Application\nExec=\"x\n"},
        {"notes.txt", "Type=Application\nExec=x\n"}}) {
    write(name, keys);
  }
  ASSERT_EQ(::mkfifo((folder / "pipe.desktop").c_str(), 0600), 0);
  EXPECT_EQ(paths(), Strings{});
  // An entry of ours that the user switched off counts as none, and is replaced.
  EXPECT_TRUE(virelune::vl_setLaunchingAtLogin(true));
  std::ofstream(folder / "virelune-widget.desktop", std::ios::app) << "Hidden=true\n";
  EXPECT_FALSE(virelune::vl_isLaunchingAtLogin());
  EXPECT_TRUE(virelune::vl_setLaunchingAtLogin(true));
  EXPECT_EQ(paths(), Strings{ownBundle});
}

}  // namespace
}  // namespace desktop
