#include "panels/about_view_controller.h"
#include "panels/info_view_controller.h"
#include "platform/application/bundle.h"
#include "tests/support/widget_fixture.h"
#include "widget/constants.h"

namespace virelune {
namespace {

using testing::ElementsAre;

class Panels : public tests::WidgetFixture {
 protected:
  void install(const char* identifier) {
    workspaceBackend.installed[identifier] = "/apps/it";
    workspaceBackend.icons["/apps/it"] =
        std::make_shared<tests::TestImage>("icon", platform::NSSize{64, 64});
  }
  void show(const VLViewController& panel) {
    window->setContentView(panel.view());
    window->setVisible(true);
  }
  static std::string painted(const VLViewController& panel) {
    tests::RecordingCanvas canvas;
    panel.view()->displayRect(canvas, panel.view()->bounds());
    std::string all;
    for (const std::string& name : canvas.names()) all += "[" + name + "]";
    return all;
  }
};

TEST_F(Panels, TheInformationPanelTellsThePlayersStateAndLaunchesIt) {
  install(VLBundleIdentifier_iTunes);
  const auto panel = platform::make<VLTInfoViewController>();
  show(*panel);
  EXPECT_EQ(painted(*panel), "[icon][Player is closed – click to open it]");
  player.launch();
  clock.settle();
  EXPECT_EQ(painted(*panel), "[icon][Nothing is playing – click to choose]");
  for (const auto& button : panel->view()->subviews()) click(centerOf(*button));
  EXPECT_THAT(workspaceBackend.asked,
              ElementsAre("launch com.apple.iTunes", "launch com.apple.iTunes"));
}

TEST_F(Panels, AnApplicationWithoutIconShowsTheWidgetsOwn) {
  install(VLBundleIdentifier_iTunes);
  workspaceBackend.icons.clear();
  const auto panel = platform::make<VLTInfoViewController>();
  panel->update(panel.get());
  EXPECT_EQ(tests::nameOf(panel->contentActionButton()->image()),
            platform::NSImageNameApplicationIcon);
  workspaceBackend.installed.clear();
  panel->update(panel.get());
  EXPECT_EQ(panel->contentActionButton()->image(), nullptr);
}

TEST_F(Panels, TheAboutPanelOpensTheMakersAddressesAndTheCompanion) {
  install(VLBundleIdentifier_Virelune);
  const auto panel = platform::make<VLAboutViewController>();
  show(*panel);
  EXPECT_EQ(painted(*panel), "[icon][www.virelune.org][hello@virelune.org]");
  for (const auto& button : panel->view()->subviews()) click(centerOf(*button));
  EXPECT_THAT(workspaceBackend.asked,
              ElementsAre("launch org.virelune.Virelune", "open http://www.virelune.org",
                          "open mailto:hello@virelune.org"));
}

TEST_F(Panels, LeaveOutWhatIsMissingAndWorkWithoutIt) {
  const auto about = platform::make<VLAboutViewController>();
  EXPECT_EQ(painted(*about), "[www.virelune.org][hello@virelune.org]");
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
