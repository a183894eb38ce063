// Dragging the artwork out into other programs.
#include "tests/integration/drag_fixture.h"

namespace tests {
namespace {

TEST_F(DragOut, AFileManagerHasTheCoverInItsFolderOnce) {
  const auto manager = start("thunar", "thunar", {QString::fromStdString(target.string())});
  ASSERT_TRUE(drop([this] { return isSaved(); }));
  expectCoverIn(target);
}

TEST_F(DragOut, AReceiverOfAddressesIsGivenAFileInAPrivateFolder) {
  const auto player = start("mpv", "mpv",
                            {"--no-config", "--idle", "--force-window", "--vo=x11", "--ao=null",
                             "--image-display-duration=inf", "--geometry=500x500+100+50",
                             "--script=/usr/lib/mpv-mpris/mpris.so"});
  const auto address = [&] { return bus.playerctl({"metadata", "xesam:url"}); };
  ASSERT_TRUE(drop([&] { return address().startsWith("file:"); }));
  expectCoverIn(waiting);
  EXPECT_EQ(std::filesystem::status(waiting).permissions(), std::filesystem::perms::owner_all);
}

}  // namespace
}  // namespace tests
