#include "desktop/session/desktop_entries.h"

#include <gmock/gmock.h>

#include <fstream>
#include <map>

#include "desktop/session/workspace.h"
#include "tests/support/temporary_folder.h"

namespace desktop {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// A user's folders and a system's, and nothing else.
class DesktopEntries : public testing::Test {
 protected:
  DesktopEntries() {
    const std::string root = folder_.path();
    for (const auto& [name, value] : {std::pair("XDG_DATA_HOME", root + "/user"),
                                      {"XDG_DATA_DIRS", root + "/system"},
                                      {"XDG_CONFIG_HOME", root + "/config"},
                                      {"XDG_CONFIG_DIRS", root + "/none"},
                                      {"XDG_CURRENT_DESKTOP", "Cardboard"}}) {
      const char* old = std::getenv(name);
      before_[name] = old != nullptr ? std::optional<std::string>(old) : std::nullopt;
      setenv(name, value.c_str(), 1);
    }
  }
  ~DesktopEntries() override {
    for (const auto& [name, value] : before_) {
      value ? setenv(name, value->c_str(), 1) : unsetenv(name);
    }
  }

  void write(const std::string& name, const std::string& text) const {
    const auto path = folder_.path() / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << text;
  }
  void writeEntry(const std::string& name, const std::string& lines) const {
    write(name, "[Desktop Entry]\nType=Application\nName=Player\n" + lines);
  }
  static std::string pathOf(const std::optional<DesktopEntry>& entry) {
    return entry ? entry->path.substr(entry->path.find("virelune-test-") + 21) : "";
  }

 private:
  const tests::TemporaryFolder folder_;
  std::map<const char*, std::optional<std::string>> before_;
};

TEST_F(DesktopEntries, CommandLinesAreSplitWithoutAShell) {
  const auto command = [](const char* exec, const char* address = "") {
    DesktopEntry entry;
    entry.exec = exec;
    entry.name = "A Player";
    entry.icon = "player";
    return commandLine(entry, address);
  };
  EXPECT_THAT(command("player --new -- %U", "http://a/$(b);`c` d"),
              ElementsAre("player", "--new", "--", "http://a/$(b);`c` d"));
  EXPECT_THAT(command("player --url=%u", "x"), ElementsAre("player", "--url=x"));
  EXPECT_THAT(command(R"("my player" "a \"b\" \$c" 50%% %c "")"),
              ElementsAre("my player", R"(a "b" $c)", "50%", "A Player", ""));
  EXPECT_THAT(command("player %i %d %m"), ElementsAre("player", "--icon", "player"));
  EXPECT_THAT(command("player \"open"), IsEmpty());
  EXPECT_THAT(command("player $HOME %"), ElementsAre("player", "$HOME", "%"));
}

TEST_F(DesktopEntries, AreFoundByIdentifierTheUsersOwnFirst) {
  for (const char* name : {"org.example.Player", "vlc", "kde/tool", "removed"}) {
    writeEntry("system/applications/" + std::string(name) + ".desktop", "Exec=a\n");
  }
  writeEntry("user/applications/removed.desktop", "Exec=a\nHidden=true\n");
  writeEntry("user/applications/vlc.desktop", "Exec=b\n");
  writeEntry("user/applications/gone.desktop", "Exec=a\nTryExec=/no/such/program\n");
  write("user/applications/link.desktop", "[Desktop Entry]\nType=Link\nExec=a\n");
  write("user/applications/broken.desktop", "Exec=a\n[Desktop Entry\n=\n[]\nType\n");
  EXPECT_EQ(pathOf(desktopEntryWithIdentifier("ORG.example.player")),
            "system/applications/org.example.Player.desktop");
  EXPECT_EQ(pathOf(desktopEntryWithIdentifier("org.videolan.VLC")),
            "user/applications/vlc.desktop");
  EXPECT_EQ(pathOf(desktopEntryWithIdentifier("kde-tool")), "system/applications/kde/tool.desktop");
  for (const char* name : {"removed", "gone", "link", "broken", "", "example", "."}) {
    EXPECT_EQ(pathOf(desktopEntryWithIdentifier(name)), "") << name;
  }
}

TEST_F(DesktopEntries, TheDefaultForATypeIsTheUsersChoiceElseAnyThatNamesIt) {
  const auto found = [] { return pathOf(defaultApplicationForType("audio/mpeg")); };
  writeEntry("system/applications/any.desktop", "Exec=a\nMimeType=video/mp4;audio/mpeg;\n");
  EXPECT_EQ(found(), "system/applications/any.desktop");
  EXPECT_EQ(pathOf(defaultApplicationForType("audio")), "");
  for (const char* name : {"added", "chosen"}) {
    writeEntry("system/applications/" + std::string(name) + ".desktop", "Exec=a\n");
  }
  write("config/mimeapps.list", "[Added Associations]\naudio/mpeg=added.desktop;\n");
  EXPECT_EQ(found(), "system/applications/added.desktop");
  write("config/cardboard-mimeapps.list",
        "[Default Applications]\naudio/mpeg=uninstalled.desktop;chosen.desktop\n");
  EXPECT_EQ(found(), "system/applications/chosen.desktop");
}

TEST_F(DesktopEntries, StoreLinksFallBackOnTheBrowserAndOtherSchemesStayClosed) {
  const auto command = [](const char* address) {
    const auto url = platform::URL::fromText(address);
    return url ? commandForAddress(*url) : std::vector<std::string>{"not an address"};
  };
  EXPECT_THAT(command("itms://store.example/a?at=1"),
              ElementsAre("xdg-open", "https://store.example/a?at=1"));
  EXPECT_THAT(command("file:///etc/passwd"), IsEmpty());
  EXPECT_THAT(command("javascript:alert(1)"), IsEmpty());

  writeEntry("user/applications/store.desktop", "Exec=store %u\nMimeType=x-scheme-handler/itms;\n");
  EXPECT_THAT(command("itms://store.example/a"), ElementsAre("store", "itms://store.example/a"));
}

}  // namespace
}  // namespace desktop
