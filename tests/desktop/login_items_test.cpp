#include "desktop/login_items.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>
#include <iterator>
#include <map>

#include "extensions/login_items.h"
#include "platform/bundle.h"
#include "platform/platform.h"
#include "tests/support/temporary_folder.h"

namespace desktop {
namespace {

namespace fs = std::filesystem;
using Strings = std::vector<std::string>;

/// Login items through the widget's own operations.
class LoginItemsTest : public testing::Test {
 protected:
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
      std::ifstream stream(entry.path());
      all[entry.path().filename()] = {std::istreambuf_iterator<char>(stream), {}};
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
  bool isHidden(std::int64_t index) const {
    const auto items = virelune::vl_SystemEventsApplication()->loginItems();
    return items.objectAtIndex(index)->propertyWithCode(platform::code("hidn"))->boolValue();
  }

  tests::TemporaryFolder temporary;
  const fs::path folder = temporary.path() / "config/autostart";
  const std::string ownBundle = "/opt/virelune/share/virelune-widget";
  const std::string executable = "/opt/virelune/bin/virelune-widget";
  LoginItems transport{{folder, ownBundle, executable}, nullptr};
  platform::NSBundle bundle{ownBundle, {}};
  platform::Platform platform;
  platform::PlatformScope scope{platform};
};

TEST_F(LoginItemsTest, LaunchAtLoginSwitchesOnAndOffAmongForeignEntries) {
  write("z.desktop", "Type=Application\nExec=/usr/bin/z --quiet %U\n");
  write("a.desktop", "Type=Application\nExec=\"/opt/a b/run\" \"x y\"\n# kept\n");
  const auto before = files();
  EXPECT_FALSE(virelune::vl_isLaunchingAtLogin());
  EXPECT_TRUE(virelune::vl_setLaunchingAtLogin(true));
  EXPECT_TRUE(virelune::vl_isLaunchingAtLogin());
  EXPECT_EQ(paths(), (Strings{"/opt/a b/run", "/usr/bin/z", ownBundle}));
  EXPECT_TRUE(isHidden(2));
  EXPECT_FALSE(isHidden(0));
  const auto during = files();
  EXPECT_NE(during.at("virelune-widget.desktop").find("\nExec=\"" + executable + "\"\n"),
            std::string::npos)
      << "the session starts the program, not its bundle";
  EXPECT_TRUE(virelune::vl_setLaunchingAtLogin(true));
  EXPECT_EQ(files(), during) << "a second entry";
  EXPECT_TRUE(virelune::vl_setLaunchingAtLogin(false));
  EXPECT_EQ(files(), before);
}

TEST_F(LoginItemsTest, NewItemsComeLastInTheOrderOfTheirMaking) {
  write("zz.desktop", "Type=Application\nExec=/usr/bin/zz\n");
  const Strings programs = {"/usr/bin/y", "/usr/bin/b", "/opt/y", "/usr/bin/a"};
  for (const std::string& program : programs) {
    EXPECT_TRUE(virelune::vl_addLoginItemWithPath_hidden(program, program == "/opt/y"));
  }
  EXPECT_EQ(paths(), (Strings{"/usr/bin/zz", "/usr/bin/y", "/usr/bin/b", "/opt/y", "/usr/bin/a"}));
  EXPECT_TRUE(isHidden(3));
  EXPECT_FALSE(isHidden(4));
  EXPECT_TRUE(virelune::vl_removeLoginItemWithPath("/USR/bin/B"));
  EXPECT_TRUE(virelune::vl_addLoginItemWithPath_hidden("/usr/bin/b", false));
  EXPECT_EQ(paths(), (Strings{"/usr/bin/zz", "/usr/bin/y", "/opt/y", "/usr/bin/a", "/usr/bin/b"}));
}

TEST_F(LoginItemsTest, OddPathsComeBackAsTheyWereAndEndNoLine) {
  for (const std::string& path :
       {std::string("/a b/c"), std::string("/%f/%%/100%"), std::string("/q\"u'o`t$e\\d"),
        std::string("/line\nExec=evil\r\t"), std::string("/\xC3\xA9/;#="), std::string("/ "),
        std::string("/back\\n\\s\\")}) {
    ASSERT_TRUE(virelune::vl_addLoginItemWithPath_hidden(path, true)) << path;
    EXPECT_EQ(paths(), Strings{path});
    const std::string text = files().begin()->second;
    EXPECT_EQ(text.find("\nExec="), text.rfind("\nExec=")) << text;
    EXPECT_TRUE(virelune::vl_removeLoginItemWithPath(path));
    EXPECT_TRUE(files().empty());
  }
  EXPECT_FALSE(virelune::vl_addLoginItemWithPath_hidden(std::string("/a\0b", 4), true));
}

TEST_F(LoginItemsTest, OnlyWhatTheSessionStartsIsALoginItem) {
  write("deleted.desktop", "Type=Application\nExec=x\nHidden=true\n");
  write("off.desktop", "Type=Application\nExec=x\nX-GNOME-Autostart-enabled=false\n");
  write("link.desktop", "Type=Link\nURL=https://host/\n");
  write("empty.desktop", "Type=Application\n");
  write("open.desktop", "Type=Application\nExec=\"x\n");
  write("notes.txt", "Type=Application\nExec=x\n");
  fs::create_directory(folder / "folder.desktop");
  ASSERT_EQ(::mkfifo((folder / "pipe.desktop").c_str(), 0600), 0);
  EXPECT_EQ(paths(), Strings{});
  EXPECT_FALSE(virelune::vl_isLaunchingAtLogin());
}

TEST_F(LoginItemsTest, AnEntryThatTheUserSwitchedOffIsReplacedWhenItIsOurs) {
  virelune::vl_setLaunchingAtLogin(true);
  std::ofstream(folder / "virelune-widget.desktop", std::ios::app) << "Hidden=true\n";
  EXPECT_FALSE(virelune::vl_isLaunchingAtLogin());
  virelune::vl_setLaunchingAtLogin(true);
  EXPECT_TRUE(virelune::vl_isLaunchingAtLogin());
  EXPECT_EQ(files().size(), 1U);
}

TEST_F(LoginItemsTest, WhatCannotBeDoneIsNotAnswered) {
  using Kind = platform::ScriptingRequest::Kind;
  const auto send = [this](Kind kind, platform::ScriptingPath path, const char* application) {
    return transport.send({.bundleIdentifier = application, .kind = kind, .path = std::move(path)});
  };
  const auto item = platform::code("logi");
  const char* const events = "com.apple.systemevents";
  write("a.desktop", "Type=Application\nExec=a\n");
  EXPECT_TRUE(send(Kind::resolve, {{item, 0}}, events));
  EXPECT_FALSE(send(Kind::resolve, {{item, 1}}, events));
  EXPECT_FALSE(send(Kind::remove, {{item, -1}}, events));
  EXPECT_FALSE(send(Kind::get, {{item, 0}, {platform::code("pnam"), {}}}, events));
  EXPECT_FALSE(send(Kind::set, {{item, 0}, {platform::code("hidn"), {}}}, events));
  EXPECT_FALSE(send(Kind::make, {{item, {}}}, events)) << "without properties";
  EXPECT_FALSE(send(Kind::count, {}, events));
  EXPECT_FALSE(send(Kind::count, {{item, {}}}, "com.apple.iTunes"));
  fs::remove_all(folder.parent_path());
  std::ofstream(folder.parent_path()) << "a file where the folder should be";
  EXPECT_FALSE(virelune::vl_addLoginItemWithPath_hidden("/usr/bin/a", false));
}

}  // namespace
}  // namespace desktop
