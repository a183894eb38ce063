#include <sys/resource.h>

#include <csignal>
#include <cstdlib>
#include <fstream>
#include <set>

#include "controls/artwork_button.h"
#include "platform/view/drag.h"
#include "tests/controls/control_fixture.h"
#include "tests/support/temporary_folder.h"

namespace virelune {
namespace {

using platform::NSDraggingSession;
using platform::NSEventType;
using platform::NSPasteboardTypePNG;
using platform::NSPasteboardTypePromisedFileURL;
using testing::ElementsAre;

/// A desktop that takes drags, or refuses them, and receives when told.
class ScriptedDrag final : public platform::DragBackend {
 public:
  bool begin(std::shared_ptr<NSDraggingSession> session) override {
    if (refuses) return false;
    sessions.push_back(std::move(session));
    return true;
  }
  std::string text(const std::string& type) {
    const auto data = sessions.back()->draggingPasteboard().dataForType(type);
    return data ? std::string(data->view()) : "(none)";
  }
  std::string drop(const std::string& folder) {
    return sessions.back()->draggingPasteboard().receivePromisedFileInDirectory(folder).value_or(
        "(none)");
  }

  bool refuses = false;
  std::vector<std::shared_ptr<NSDraggingSession>> sessions;
};

class ArtworkDrag : public tests::ControlFixture<VLArtworkButton> {
 protected:
  ArtworkDrag() : ControlFixture(platform::NSMakeRect(6, 9, 50, 50)) {
    setenv("TZ", "HERE-1", 1);  // one hour ahead of UTC
    tzset();
    platform_.drag = &desktop;
    show("cover");
  }
  ~ArtworkDrag() override {
    platform_.drag = nullptr;
    unsetenv("TZ");
    tzset();
  }
  void show(const std::string& name) {
    control->setImage(platform::make<tests::TestImage>(name, platform::NSSize{10, 10}));
  }
  void drag() {
    sendMouse(NSEventType::leftMouseDown, {30, 30});
    sendMouse(NSEventType::leftMouseDragged, {31, 30});
  }
  std::set<std::string> files() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
      names.insert(entry.path().filename().string());
    }
    return names;
  }
  std::string contents(const std::string& name) const {
    std::ifstream file(folder.path() / name);
    return {std::istreambuf_iterator<char>(file), {}};
  }

  tests::TemporaryFolder folder;
  const std::string dropFolder = folder.path().string();
  ScriptedDrag desktop;
};

TEST_F(ArtworkDrag, TheFirstMovementBeginsTheOneDragOfAPressAndNothingClicks) {
  drag();
  sendMouse(NSEventType::leftMouseDragged, {40, 30});
  EXPECT_EQ(platform::NSEvent::pressedMouseButtons(), 0U) << "the drag has taken the press over";
  sendMouse(NSEventType::leftMouseUp, {40, 30});
  EXPECT_EQ(target->count, 0);
  ASSERT_EQ(desktop.sessions.size(), 1U);
  auto& session = *desktop.sessions.front();
  EXPECT_EQ(session.draggingLocation(), (platform::NSPoint{25, 21}));
  EXPECT_EQ(session.items().front()->draggingFrame(), control->bounds());
  EXPECT_EQ(session.items().front()->contents(), control->image());
  click({30, 30});
  EXPECT_EQ(target->count, 1) << "the next press is a press again";
}

TEST_F(ArtworkDrag, WithoutAnImageOrADesktopThatTakesItThereIsNoDrag) {
  const auto attempt = [&] {
    drag();
    sendMouse(NSEventType::leftMouseUp, {31, 30});
  };
  desktop.refuses = true;
  attempt();
  platform_.drag = nullptr;
  attempt();
  platform_.drag = &desktop;
  desktop.refuses = false;
  control->setImage(nullptr);
  attempt();
  EXPECT_TRUE(desktop.sessions.empty());
  EXPECT_EQ(target->count, 3) << "the press went on";
}

TEST_F(ArtworkDrag, OffersPNGBeforeTheFileAndMakesWhatIsShownWhenAsked) {
  drag();
  EXPECT_THAT(desktop.sessions.back()->draggingPasteboard().types(),
              ElementsAre(NSPasteboardTypePNG, NSPasteboardTypePromisedFileURL));
  show("next");
  EXPECT_EQ(desktop.text(NSPasteboardTypePNG), "PNG of next");
  EXPECT_EQ(desktop.text("text/plain"), "(none)");
  EXPECT_EQ(desktop.text(NSPasteboardTypePromisedFileURL), "(none)") << "no folder was named";
  std::ofstream(folder.path() / "file") << "text";
  for (const char* place : {"", "/missing", "/file"}) {
    EXPECT_EQ(desktop.drop(*place == 0 ? place : dropFolder + place), "(none)") << place;
  }
  EXPECT_EQ(desktop.drop("/proc/self"), "(none)");
  EXPECT_THAT(files(), ElementsAre("file"));
  EXPECT_NE(desktop.drop(dropFolder), "(none)");
  EXPECT_EQ(desktop.text(NSPasteboardTypePromisedFileURL), "(none)") << "the folder was for once";
  control->setImage(nullptr);
  EXPECT_EQ(desktop.text(NSPasteboardTypePNG), "(none)") << "not the bytes of the time before";
  EXPECT_EQ(desktop.drop(dropFolder), "(none)");
}

TEST_F(ArtworkDrag, ADropWritesAFileNamedByItsLocalSecondAndReplacesOneOfTheSame) {
  drag();
  clock.advance(61);
  const std::string name = "2016-03-05 15-08-10.jpg";
  EXPECT_EQ(desktop.drop(dropFolder), dropFolder + "/" + name);
  show("next");
  desktop.drop(dropFolder);
  EXPECT_THAT(files(), ElementsAre(name));
  EXPECT_EQ(contents(name), "JPEG of next at 1.000000");
  clock.advance(1);
  desktop.drop(dropFolder);
  EXPECT_EQ(files().size(), 2U);
}

TEST_F(ArtworkDrag, AFullDiskLeavesTheOldFileAndNoHalfOne) {
  drag();
  const std::string path = desktop.drop(dropFolder);
  rlimit before{};
  getrlimit(RLIMIT_FSIZE, &before);
  const auto handler = std::signal(SIGXFSZ, SIG_IGN);
  const rlimit full{8, before.rlim_max};
  setrlimit(RLIMIT_FSIZE, &full);
  show("next");
  EXPECT_EQ(control->saveImageInDirectory(dropFolder), path) << "handed out all the same";
  setrlimit(RLIMIT_FSIZE, &before);
  std::signal(SIGXFSZ, handler);
  EXPECT_THAT(files(), ElementsAre("2016-03-05 15-07-09.jpg"));
  EXPECT_EQ(contents("2016-03-05 15-07-09.jpg"), "JPEG of cover at 1.000000");
}

TEST_F(ArtworkDrag, WhatIsBeingDraggedOutlivesItsPanel) {
  drag();
  control->removeFromSuperview();
  control = nullptr;
  EXPECT_NE(desktop.drop(dropFolder), "(none)");
  desktop.sessions.clear();
}

}  // namespace
}  // namespace virelune
