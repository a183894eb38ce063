#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "desktop/drag/folder.h"
#include "tests/support/temporary_folder.h"

namespace desktop {
namespace {

namespace fs = std::filesystem;

TEST(DragFolder, FilesWaitAnHourInAFolderOfTheUserAloneOrNowhere) {
  const tests::TemporaryFolder runtime;
  setenv("XDG_RUNTIME_DIR", runtime.path().c_str(), 1);
  const fs::path waiting = runtime.path() / "virelune-widget-drops";
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
  unsetenv("XDG_RUNTIME_DIR");
}

}  // namespace
}  // namespace desktop
