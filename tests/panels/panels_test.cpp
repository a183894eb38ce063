#include "panels/about_view_controller.h"
#include "panels/info_view_controller.h"
#include "platform/application/bundle.h"
#include "tests/support/widget_fixture.h"
#include "widget/constants.h"

namespace virelune {
namespace {

using testing::ElementsAre;
using tests::portrait;

class Panels : public tests::WidgetFixture {
 protected:
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

}  // namespace
}  // namespace virelune
