#include "desktop/session/workspace.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>
#include <QtGui/QImage>

#include "platform/application/player_dictionary.h"
#include "tests/support/temporary_folder.h"

namespace desktop {
namespace {

/// A player of which all is told from outside.
struct Player final : PlayerApplication {
  bool isRunning() override { return runs; }
  std::string desktopEntry() override { return entry; }
  bool raise() override { return runs && ++raised > 0; }
  bool runs = false;
  std::string entry;
  int raised = 0;
};

/// Takes the addresses that are opened.
class Browser final : public QObject {
  Q_OBJECT

 public:
  Browser() {
    for (const char* scheme : schemes) QDesktopServices::setUrlHandler(scheme, this, "open");
  }
  ~Browser() override {
    for (const char* scheme : schemes) QDesktopServices::unsetUrlHandler(scheme);
  }
  Q_SLOT void open(const QUrl& url) { opened.push_back(url.toEncoded().toStdString()); }
  std::vector<std::string> opened;

 private:
  static constexpr auto schemes = {"http", "https", "mailto", "file", "javascript"};
};

/// Over a user's folders and a system's, and nothing else. One test walks through all, because the
/// library underneath looks for them once in a process.
TEST(Workspace, FindsTheUsersOwnApplicationsAndIconsFirstAndOpensAddressesOfTheWebOnly) {
  const tests::TemporaryFolder folder;
  const std::string root = folder.path();
  const auto write = [&](const std::string& name, const std::string& text) {
    const auto path = folder.path() / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << text;
  };
  for (const auto& [name, place] : {std::pair("XDG_DATA_HOME", "/user"),
                                    {"XDG_DATA_DIRS", "/system"},
                                    {"XDG_CONFIG_HOME", "/config"},
                                    {"XDG_CONFIG_DIRS", "/none"}}) {
    setenv(name, (root + place).c_str(), 1);
  }
  const std::string echo =
      "sh -c \"echo \\\\$1 \\\\$(readlink /proc/self/fd/2) >" + root + "/pipe\" sh %u";
  for (const auto& [name, command] :
       {std::pair<const char*, std::string>("system/applications/org.example.Player", "sh"),
        {"system/applications/vlc", "sh"},
        {"system/applications/kde/tool", "sh"},
        {"system/applications/removed", "sh"},
        {"system/applications/chosen", "sh"},
        {"user/applications/removed", "sh\nHidden=true"},
        {"user/applications/vlc", "sh\nIcon=themed"},
        {"user/applications/gone", "sh\nTryExec=/no/such/program"},
        {"user/applications/store", echo}}) {
    write(name + std::string(".desktop"),
          "[Desktop Entry]\nType=Application\nName=Player\nExec=" + command + '\n');
  }
  write("config/mimeapps.list",
        "[Default Applications]\naudio/mpeg=uninstalled.desktop;chosen.desktop\n"
        "x-scheme-handler/itms=store.desktop\n");
  write("user/icons/hicolor/index.theme",
        "[Icon Theme]\nName=hicolor\nDirectories=64x64/apps\n[64x64/apps]\nSize=64\n");
  write("user/icons/hicolor/64x64/apps/themed.png", "");
  QImage(64, 64, QImage::Format_RGB32)
      .save(QString::fromStdString(root + "/user/icons/hicolor/64x64/apps/themed.png"));
  Player player;
  DesktopWorkspace workspace{&player};

  const auto expectPath = [&](const std::string& identifier, const std::string& expected) {
    EXPECT_EQ(workspace.applicationPath(identifier).value_or(root + '/'), root + '/' + expected)
        << identifier;
  };
  expectPath("ORG.example.player", "system/applications/org.example.Player.desktop");
  expectPath("org.videolan.VLC", "user/applications/vlc.desktop");
  expectPath("kde-tool", "system/applications/kde/tool.desktop");
  for (const char* name : {"removed", "gone", "", "example", ".", "../applications/vlc"}) {
    expectPath(name, "");
  }
  // The player's is its own, else while none runs the user's player for audio.
  const std::string own = platform::player::bundleIdentifier;
  expectPath(own, "system/applications/chosen.desktop");
  player.entry = "vlc";
  expectPath(own, "user/applications/vlc.desktop");
  player.runs = true;
  expectPath(own, "user/applications/vlc.desktop");
  player.entry = "unknown";
  expectPath(own, "");
  workspace.launchApplication(own);
  EXPECT_EQ(player.raised, 1);

  const auto icon = workspace.icon(root + "/user/applications/vlc.desktop");
  ASSERT_NE(icon, nullptr);
  EXPECT_EQ(icon->size(), (platform::NSSize{64, 64}));
  EXPECT_EQ(workspace.icon(root + "/system/applications/chosen.desktop"), nullptr);
  EXPECT_EQ(workspace.icon("/no/such/entry.desktop"), nullptr);

  const Browser browser;
  const auto open = [&](const char* address) {
    workspace.openURL(*platform::URL::fromText(address));
  };
  for (const char* address : {"http://a.example/?q=%26%20b", "mailto:me@a.example",
                              "file:///etc/passwd", "javascript:alert(1)"}) {
    open(address);
  }
  std::thread([&] { open("itmss://store.example/a?at=1"); }).join();
  EXPECT_EQ(browser.opened.size(), 2U) << "waits for the main thread";
  QCoreApplication::processEvents();
  EXPECT_THAT(browser.opened,
              testing::ElementsAre("http://a.example/?q=%26%20b", "mailto:me@a.example",
                                   "https://store.example/a?at=1"));
  ASSERT_EQ(::mkfifo((root + "/pipe").c_str(), S_IRWXU), 0);
  open("itms://store.example/a?b=$(c);d&e");
  EXPECT_EQ(tests::contents(root + "/pipe"), "itms://store.example/a?b=$(c);d&e /dev/null\n")
      << "with its complaints";
  EXPECT_EQ(browser.opened.size(), 3U);
}

}  // namespace
}  // namespace desktop

#include "workspace_test.moc"
