#include "desktop/session/workspace.h"

#include <fcntl.h>
#include <gmock/gmock.h>
#include <poll.h>
#include <sys/stat.h>

#include <QtCore/QCoreApplication>
#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>
#include <QtGui/QImage>
#include <thread>

#include "desktop/files/file_descriptor.h"
#include "platform/application/player_dictionary.h"
#include "tests/support/temporary_folder.h"

namespace desktop {
namespace {

using testing::ElementsAre;

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

/// A user's folders and a system's, and nothing else. They are one for all tests, and filled before
/// the first: the library underneath looks them up once.
class Workspace : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    const bool isFirst = !folder;
    if (isFirst) folder.emplace();
    const std::string root = folder->path();
    for (const auto& [name, value] : {std::pair("XDG_DATA_HOME", root + "/user"),
                                      {"XDG_DATA_DIRS", root + "/system"},
                                      {"XDG_CONFIG_HOME", root + "/config"},
                                      {"XDG_CONFIG_DIRS", root + "/none"}}) {
      const char* old = std::getenv(name);
      before[name] = old != nullptr ? std::optional<std::string>(old) : std::nullopt;
      setenv(name, value.c_str(), 1);
    }
    if (isFirst) fill(root);
  }
  static void TearDownTestSuite() {
    for (const auto& [name, value] : before) {
      value ? setenv(name, value->c_str(), 1) : unsetenv(name);
    }
  }
  static void fill(const std::string& root) {
    for (const char* name : {"org.example.Player", "vlc", "kde/tool", "removed", "chosen"}) {
      writeEntry("system/applications/" + std::string(name) + ".desktop", "Exec=sh\n");
    }
    writeEntry("user/applications/removed.desktop", "Exec=sh\nHidden=true\n");
    writeEntry("user/applications/vlc.desktop", "Exec=sh\nIcon=themed\n");
    writeEntry("user/applications/gone.desktop", "Exec=sh\nTryExec=/no/such/program\n");
    writeEntry(
        "user/applications/store.desktop",
        "Exec=sh -c \"echo \\\\$1 \\\\$(readlink /proc/self/fd/2) >" + root + "/pipe\" sh %u\n");
    write("config/mimeapps.list",
          "[Default Applications]\naudio/mpeg=uninstalled.desktop;chosen.desktop\n"
          "x-scheme-handler/itms=store.desktop\n");
    ::mkfifo((root + "/pipe").c_str(), S_IRWXU);
    std::filesystem::create_directories(folder->path() / "user/icons/hicolor/64x64/apps");
    write("user/icons/hicolor/index.theme",
          "[Icon Theme]\nName=hicolor\nDirectories=64x64/apps\n[64x64/apps]\nSize=64\n");
    QImage icon(64, 64, QImage::Format_ARGB32);
    icon.fill(Qt::red);
    icon.save(QString::fromStdString(root + "/user/icons/hicolor/64x64/apps/themed.png"));
  }
  static void write(const std::string& name, const std::string& text) {
    const auto path = folder->path() / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path) << text;
  }
  static void writeEntry(const std::string& name, const std::string& lines) {
    write(name, "[Desktop Entry]\nType=Application\nName=Player\n" + lines);
  }
  std::string path(const std::string& identifier) {
    const auto found = workspace.applicationPath(identifier);
    return found ? found->substr(folder->path().string().size() + 1) : "";
  }
  void open(const char* address) {
    if (const auto url = platform::URL::fromText(address)) workspace.openURL(*url);
  }
  /// What is written into the pipe; empty when nothing comes.
  static std::string fromPipe() {
    const FileDescriptor pipe(::open((folder->path() / "pipe").c_str(), O_RDWR | O_CLOEXEC));
    pollfd wanted{pipe.get(), POLLIN, 0};
    std::string text(1024, 0);
    if (::poll(&wanted, 1, 10'000) != 1) return {};
    text.resize(static_cast<std::size_t>(::read(pipe.get(), text.data(), text.size())));
    return text;
  }

  static inline std::optional<tests::TemporaryFolder> folder;
  static inline std::map<const char*, std::optional<std::string>> before;
  Player player;
  DesktopWorkspace workspace{&player};
};

TEST_F(Workspace, ApplicationsAreFoundByIdentifierTheUsersOwnFirst) {
  for (const auto& [identifier, expected] : std::map<std::string, std::string>{
           {"ORG.example.player", "system/applications/org.example.Player.desktop"},
           {"org.videolan.VLC", "user/applications/vlc.desktop"},
           {"kde-tool", "system/applications/kde/tool.desktop"}}) {
    EXPECT_EQ(path(identifier), expected);
  }
  for (const char* name : {"removed", "gone", "", "example", ".", "../applications/vlc"}) {
    EXPECT_EQ(path(name), "") << name;
  }
}

TEST_F(Workspace, ThePlayersIsItsOwnElseWhileNoneRunsTheUsersPlayerForAudio) {
  const auto found = [this] { return path(platform::player::bundleIdentifier); };
  EXPECT_EQ(found(), "system/applications/chosen.desktop");
  player.entry = "vlc";
  EXPECT_EQ(found(), "user/applications/vlc.desktop");
  player.runs = true;
  EXPECT_EQ(found(), "user/applications/vlc.desktop");
  player.entry = "unknown";
  EXPECT_EQ(found(), "");
  workspace.launchApplication(platform::player::bundleIdentifier);
  EXPECT_EQ(player.raised, 1);
}

TEST_F(Workspace, AnIconIsTheThemesOrTheWidgetsOwn) {
  const auto icon = workspace.icon(folder->path() / "user/applications/vlc.desktop");
  ASSERT_NE(icon, nullptr);
  EXPECT_EQ(icon->size(), (platform::NSSize{64, 64}));
  EXPECT_EQ(workspace.icon(folder->path() / "system/applications/chosen.desktop"), nullptr);
  EXPECT_EQ(workspace.icon("/no/such/entry.desktop"), nullptr);
}

TEST_F(Workspace, AddressesAreOpenedOnTheMainThreadAndOtherSchemesStayClosed) {
  const Browser browser;
  open("http://a.example/?q=%26%20b");
  open("mailto:me@a.example");
  open("file:///etc/passwd");
  open("javascript:alert(1)");
  std::thread([this] { open("itmss://store.example/a?at=1"); }).join();
  EXPECT_EQ(browser.opened.size(), 2U);
  QCoreApplication::processEvents();
  EXPECT_THAT(browser.opened, ElementsAre("http://a.example/?q=%26%20b", "mailto:me@a.example",
                                          "https://store.example/a?at=1"));
  open("itms://store.example/a?b=$(c);d&e");
  EXPECT_EQ(fromPipe(), "itms://store.example/a?b=$(c);d&e /dev/null\n") << "with its complaints";
  EXPECT_EQ(browser.opened.size(), 3U);
}

}  // namespace
}  // namespace desktop

#include "workspace_test.moc"
