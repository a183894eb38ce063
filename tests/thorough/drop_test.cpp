// Dragging the artwork out into programs that are heavy to install.
#include "tests/integration/drag_fixture.h"
#include "tests/integration/loopback_server.h"

namespace tests {
namespace {

using testing::MatchesRegex;

TEST_F(DragOut, AnotherFileManagerHasTheCoverInItsFolderOnce) {
  const auto manager = start("pcmanfm", "pcmanfm", {QString::fromStdString(target.string())});
  ASSERT_TRUE(drop([this] { return isSaved(); }));
  expectCoverIn(target);
}

TEST_F(DragOut, APageThatLooksAtFilesOnlyAtTheDropIsGivenOne) {
  std::mutex mutex;
  std::string dropped;  // guarded by it
  const LoopbackServer server([&](Exchange& exchange) {
    constexpr std::string_view report = "/dropped?";
    if (exchange.target.starts_with(report)) {
      const std::lock_guard lock(mutex);
      dropped = exchange.target.substr(report.size());
    }
    exchange.send(
        reply("<body><script>"
              "addEventListener('dragover', e => e.preventDefault());"
              "addEventListener('drop', e => {"
              "  e.preventDefault();"
              "  fetch('/dropped?' + [...e.dataTransfer.files].map("
              "    f => [f.name.replace(' ', '_'), f.type, f.size > 1000]));"
              "});</script></body>"));
  });
  const std::string profile = (folder.path() / "profile").string();
  std::filesystem::create_directory(profile);
  const auto browser =
      start("firefox", "firefox-esr",
            {"--no-remote", "--profile", QString::fromStdString(profile), "--width", "600",
             "--height", "600", QString::fromStdString(server.address("/"))});
  ASSERT_TRUE(drop([&] {
    const std::lock_guard lock(mutex);
    return !dropped.empty();
  }));
  EXPECT_THAT(dropped, MatchesRegex("[0-9_-]{19}\\.jpg,image/jpeg,true"));
}

}  // namespace
}  // namespace tests
