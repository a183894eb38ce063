#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "desktop/drag/folder.h"
#include "desktop/drag/mime_data.h"
#include "platform/foundation/file_manager.h"
#include "tests/support/temporary_folder.h"

namespace desktop {
namespace {

namespace fs = std::filesystem;

/// Writes a file of the next number wherever it is told to.
class Source final : public platform::NSDraggingSource,
                     public platform::NSPasteboardItemDataProvider {
 public:
  platform::NSDragOperation draggingSession_sourceOperationMaskForDraggingContext(
      platform::NSDraggingSession*, platform::NSDraggingContext) override {
    return platform::NSDragOperationCopy;
  }
  void pasteboard_item_provideDataForType(platform::NSPasteboard* pasteboard,
                                          platform::NSPasteboardItem* item,
                                          const std::string& type) override {
    if (type == platform::NSPasteboardTypePNG) return item->setString_forType("PNG", type);
    const std::string path = *pasteboard->pasteLocation() + "/" + std::to_string(++files) + ".jpg";
    platform::writeToFileAtomically(path, "JPEG");
    item->setString_forType(platform::URL::fileURLWithPath(path)->absoluteString(), type);
  }

  int files = 0;
};

struct Drag : testing::Test {
  Drag() { setenv("XDG_RUNTIME_DIR", runtime.path().c_str(), 1); }
  ~Drag() override { unsetenv("XDG_RUNTIME_DIR"); }

  std::shared_ptr<platform::NSDraggingSession> session() {
    const auto item = platform::make<platform::NSPasteboardItem>();
    item->setDataProvider_forTypes(
        source, {platform::NSPasteboardTypePNG, platform::NSPasteboardTypePromisedFileURL});
    return platform::make<platform::NSDraggingSession>(
        std::vector{platform::make<platform::NSDraggingItem>(item)}, source, platform::NSPoint{});
  }

  const tests::TemporaryFolder runtime;
  const fs::path waiting = runtime.path() / "virelune-widget-drops";
  const std::shared_ptr<Source> source = std::make_shared<Source>();
};

TEST_F(Drag, FilesWaitAnHourInAFolderOfTheUserAloneOrNowhere) {
  fs::create_directory(waiting);
  fs::permissions(waiting, fs::perms::owner_all);
  const auto now = fs::file_time_type::clock::now();
  for (const auto& [name, age] : {std::pair("old.jpg", 61), std::pair("new.jpg", 59)}) {
    std::ofstream(waiting / name) << "JPEG";
    fs::last_write_time(waiting / name, now - std::chrono::minutes(age));
  }
  const DragFolder folder;
  EXPECT_FALSE(fs::exists(waiting / "old.jpg"));
  EXPECT_TRUE(fs::exists(waiting / "new.jpg"));

  EXPECT_EQ(folder.path(), waiting);
  fs::permissions(waiting, static_cast<fs::perms>(0755));
  EXPECT_EQ(folder.path(), std::nullopt);
  fs::remove_all(waiting);
  const tests::TemporaryFolder elsewhere;
  fs::create_symlink(elsewhere.path(), waiting);
  EXPECT_EQ(folder.path(), std::nullopt);
  setenv("XDG_RUNTIME_DIR", "relative", 1);
  EXPECT_EQ(DragFolder().path(), std::nullopt);
}

}  // namespace
}  // namespace desktop
