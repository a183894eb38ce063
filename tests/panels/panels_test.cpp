#include "panels/about_view_controller.h"
#include "panels/info_view_controller.h"
#include "tests/support/widget_fixture.h"
#include "widget/constants.h"

namespace virelune {
namespace {

using testing::ElementsAre;

class Panels : public tests::WidgetFixture {
 protected:
  std::shared_ptr<platform::NSImage> icon =
      std::make_shared<tests::TestImage>("icon", platform::NSSize{64, 64});

  std::string paint(const VLViewController& panel) {
    tests::RecordingCanvas canvas;
    panel.view()->displayRect(canvas, panel.view()->bounds());
    std::string all;
    for (const auto& images : {canvas.images(), canvas.texts()}) {
      for (const std::string& name : images) all += "[" + name + "]";
    }
    return all;
  }
};

TEST_F(Panels, TheInformationPanelTellsThePlayersStateAndLaunchesIt) {
  workspaceBackend.installed[VLBundleIdentifier_iTunes] = "/apps/player";
  workspaceBackend.icons["/apps/player"] = icon;
  const auto panel = platform::make<VLTInfoViewController>();
  EXPECT_EQ(panel->contentActionButton()->image(), nullptr) << "it comes with the first update";
  window->setContentView(panel->view());
  window->setVisible(true);
  EXPECT_EQ(paint(*panel), "[icon][Player is closed – click to open it]");
  player.launch();
  clock.settle();
  EXPECT_EQ(paint(*panel), "[icon][Nothing is playing – click to choose]");

  click(centerOf(*panel->contentActionButton()));
  click(centerOf(*panel->contentTitleButton()));
  EXPECT_THAT(workspaceBackend.asked,
              ElementsAre("launch com.apple.iTunes", "launch com.apple.iTunes"));
}

TEST_F(Panels, AnApplicationWithoutIconShowsTheWidgetsOwn) {
  workspaceBackend.installed[VLBundleIdentifier_iTunes] = "/apps/player";
  const auto panel = platform::make<VLTInfoViewController>();
  panel->update(panel.get());
  EXPECT_EQ(tests::nameOf(panel->contentActionButton()->image()),
            platform::NSImageNameApplicationIcon);
  workspaceBackend.installed.clear();
  panel->update(panel.get());
  EXPECT_EQ(panel->contentActionButton()->image(), nullptr);
}

TEST_F(Panels, TheInformationPanelLivesWithoutTextsAndWithoutAWorkspace) {
  platform_.mainBundle = nullptr;
  const auto panel = platform::make<VLTInfoViewController>();
  EXPECT_EQ(panel->contentTitleButton(), nullptr);
  platform_.workspace = nullptr;
  EXPECT_TRUE(panel->update(panel.get()));
  EXPECT_FALSE(panel->clickedActionButton(panel.get()));
}

TEST_F(Panels, TheAboutPanelOpensTheMakersAddressesAndTheCompanion) {
  workspaceBackend.installed[VLBundleIdentifier_Virelune] = "/apps/companion";
  workspaceBackend.icons["/apps/companion"] = icon;
  const auto panel = platform::make<VLAboutViewController>();
  window->setContentView(panel->view());
  window->setVisible(true);
  EXPECT_EQ(paint(*panel), "[icon][www.virelune.org][hello@virelune.org]");
  for (const auto& button : panel->view()->subviews()) click(centerOf(*button));
  EXPECT_THAT(workspaceBackend.asked,
              ElementsAre("launch org.virelune.Virelune", "open http://www.virelune.org",
                          "open mailto:hello@virelune.org"));
}

TEST_F(Panels, TheAboutPanelLeavesOutACompanionThatIsNotInstalled) {
  const auto panel = platform::make<VLAboutViewController>();
  EXPECT_EQ(paint(*panel), "[www.virelune.org][hello@virelune.org]");
  platform_.workspace = nullptr;
  EXPECT_FALSE(panel->clickedActionButton(nullptr));
  EXPECT_FALSE(panel->clickedWebButton(nullptr));
  platform_.mainBundle = nullptr;
  EXPECT_FALSE(panel->clickedEmailButton(nullptr));
  EXPECT_TRUE(platform::make<VLAboutViewController>()->view()->subviews().empty());
}

}  // namespace
}  // namespace virelune
