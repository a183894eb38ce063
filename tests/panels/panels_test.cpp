#include "panels/about_view_controller.h"

#include "panels/info_view_controller.h"
#include "panels/link.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/widget_fixture.h"
#include "widget/constants.h"

namespace virelune {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using tests::portrait;

struct Panels : tests::WidgetFixture {
  void install(const char* identifier) {
    workspaceBackend.installed[identifier] = "/apps/it";
    workspaceBackend.icons["/apps/it"] =
        std::make_shared<tests::TestImage>("icon", platform::NSSize{64, 32});
  }
  /// Shows the panel and clicks on all that it holds; answers what was asked of the workspace.
  const std::vector<std::string>& clickAll(const VLViewController& panel) {
    window->setContentView(panel.view());
    window->setVisible(true);
    for (const auto& button : panel.view()->subviews()) click(centerOf(*button));
    return workspaceBackend.asked;
  }
};

TEST_F(Panels, TheInformationPanelTellsThePlayersStateAndLaunchesIt) {
  install(VLBundleIdentifier_iTunes);
  const auto panel = platform::make<VLTInfoViewController>();
  EXPECT_THAT(clickAll(*panel), ElementsAre("launch com.apple.iTunes", "launch com.apple.iTunes"));
  const std::string before = "\nfill 0 0 320 30 grey 0/0\nicon 18 10 20 10\n";
  const std::string after = " 45 6.875 260 16.25 label size 13 left";
  EXPECT_EQ(portrait(*panel->view()), before + "Player is closed – click to open it" + after);
  player.launch();
  clock.settle();
  EXPECT_EQ(portrait(*panel->view()), before + "Nothing is playing – click to choose" + after);
  workspaceBackend.icons.clear();
  panel->update(panel.get());
  EXPECT_EQ(tests::nameOf(panel->contentActionButton()->image()),
            platform::NSImageNameApplicationIcon);
  workspaceBackend.installed.clear();
  panel->update(panel.get());
  EXPECT_EQ(panel->contentActionButton()->image(), nullptr);
  platform_.mainBundle = nullptr;
  panel->update(panel.get());
  EXPECT_EQ(panel->contentTitleButton()->attributedTitle(), std::nullopt)
      << "its text went missing";
}

TEST_F(Panels, TheAboutPanelOpensTheMakersAddressesAndTheCompanion) {
  install(VLBundleIdentifier_Virelune);
  const auto panel = platform::make<VLAboutViewController>();
  EXPECT_EQ(portrait(*panel->view()),
            "\nfill 0 0 320 64 grey 0/0\nicon 10 23 40 20"
            "\nwww.virelune.org 60 34 240 20 label size 16 left"
            "\nhello@virelune.org 60 16.5 240 15 label size 12 left");
  EXPECT_THAT(clickAll(*panel),
              ElementsAre("launch org.virelune.Virelune", "open http://www.virelune.org",
                          "open mailto:hello@virelune.org"));
}

TEST_F(Panels, LeaveOutWhatIsMissingAndWorkWithoutIt) {
  const auto about = platform::make<VLAboutViewController>();
  EXPECT_EQ(about->view()->subviews().size(), 2U);
  const tests::TemporaryFolder folder;
  std::filesystem::create_directory(folder.path() / "en.lproj");
  std::ofstream(folder.path() / "en.lproj/Localizable.strings")
      << "<plist><dict><key>0000.0002</key><string>a b@c.org</string></dict></plist>";
  const auto other = platform::NSBundle::bundleWithPath(folder.path(), {});
  platform_.mainBundle = other.get();
  EXPECT_EQ(about->infoItemEmail(), "a b@c.org");
  EXPECT_FALSE(about->clickedEmailButton(nullptr)) << "a blank is in no address";
  EXPECT_TRUE(workspaceBackend.asked.empty());
  platform_.mainBundle = bundle.get();
  platform_.workspace = nullptr;
  EXPECT_FALSE(about->clickedActionButton(nullptr));
  EXPECT_FALSE(about->clickedWebButton(nullptr));
  platform_.mainBundle = nullptr;
  EXPECT_FALSE(about->clickedEmailButton(nullptr));
  EXPECT_TRUE(platform::make<VLAboutViewController>()->view()->subviews().empty());
  const auto information = platform::make<VLTInfoViewController>();
  EXPECT_EQ(information->contentTitleButton(), nullptr);
  EXPECT_TRUE(information->update(information.get()));
  EXPECT_FALSE(information->clickedActionButton(nullptr));
}

struct Link : tests::WidgetFixture {
  /// What the workspace was asked to open for an artist whose search brings this reply.
  std::vector<std::string> openedFor(const std::string& artist, const std::string& reply) {
    workspaceBackend.asked.clear();
    http.replies = {reply};
    const bool opened = VLLink::openStoreForArtist(artist);
    EXPECT_EQ(opened, !workspaceBackend.asked.empty());
    return workspaceBackend.asked;
  }
};

TEST_F(Link, FirstMatchingArtistsPageOpensAsAStoreLinkOfAFreshSearch) {
  openedFor("a + b&c é", "");
  const auto& request = http.at(0).request;
  EXPECT_EQ(request.url,
            "https://itunes.apple.com/search?term=a+++b&c+%C3%A9"
            "&media=music&attribute=artistTerm&entity=musicArtist");
  EXPECT_EQ(request.timeout, 3);
  EXPECT_THAT(request.headers, testing::Contains(std::pair("Cache-Control", "no-cache")));
  EXPECT_THAT(openedFor("foo", R"({"results":[null,{"artistName":"Foo Fighters","artistLinkUrl":
      "https://x.example/1"},{"artistName":"FOO","artistLinkUrl":"https://x.example/2?uo=4&q=%2B#top",
      "artistViewUrl":"https://x.example/3"},{"artistName":"foo","artistLinkUrl":"https://x/4"}]})"),
              ElementsAre("open itms://x.example/2?uo=4&q=%2B&at=4p8d27M#top"));
  const std::pair<const char*, const char*> kept[] = {
      {"https://h/p?", "//h/p?"},
      {"https://h/p?a=%2B&&b&c==&d=%26#f?g", "//h/p?a=%2B&&b&c==&d=%26&#f?g"},
      {"https://h/p?a&", "//h/p?a&&"},
      {"mailto:a@b", "a@b?"}};
  for (const auto& [address, before] : kept) {
    std::string opened = "open itms:" + std::string(before);
    opened.insert(std::min(opened.find('#'), opened.size()), "at=4p8d27M");
    EXPECT_THAT(openedFor("foo", R"({"results":[{"artistName":"foo","artistLinkUrl":")" +
                                     std::string(address) + "\"}]}"),
                ElementsAre(opened));
  }
  EXPECT_THAT(openedFor("foo", R"({"results":[{"artistName":"foo","artistLinkUrl":"",
      "artistViewUrl":"//x.example/3"},{"artistName":"foo","artistLinkUrl":"https://x/4"}]})"),
              ElementsAre("open itms://x.example/3?at=4p8d27M"));
}

TEST_F(Link, WhateverIsMissingOpensNothing) {
  std::istringstream bad(R"(
nonsense
[{"artistName":"foo","artistLinkUrl":"https://x/"}]
{"results":"foo"}
{"results":[{"artistName":"food","artistLinkUrl":"https://x/"}]}
{"results":[{"artistName":7,"artistLinkUrl":"https://x/"}]}
{"results":[{"artistName":"foo"},{"artistName":"foo","artistLinkUrl":"https://x/"}]}
{"results":[{"artistName":"foo","artistLinkUrl":"https://not an address"}]})");
  for (std::string reply; std::getline(bad, reply);) {
    EXPECT_THAT(openedFor("foo", reply), IsEmpty()) << reply;
  }
  const std::size_t asked = http.count();
  EXPECT_FALSE(VLLink::openStoreForArtist(""));
  EXPECT_EQ(http.count(), asked);
  platform_.workspace = nullptr;
  http.replies = {R"({"results":[{"artistName":"foo","artistLinkUrl":"https://x/"}]})"};
  EXPECT_FALSE(VLLink::openStoreForArtist("foo"));
}

}  // namespace
}  // namespace virelune
