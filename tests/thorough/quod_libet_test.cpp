// Ratings in a real player's library.

#include "tests/integration/bridge_fixture.h"
#include "tests/integration/mpv.h"

namespace tests {
namespace {

using platform::code;

class QuodLibet : public BridgeFixture {
 protected:
  QuodLibet() : environment_(display_.environment()) {
    const auto settings = home_.path() / "quodlibet";
    std::filesystem::create_directory(settings);
    const auto music = std::filesystem::path(file_.toStdString()).parent_path();
    std::ofstream(settings / "config") << "[settings]\nscan = " << music.native()
                                       << "\n[plugins]\nactive_plugins = mpris\n"
                                          "[player]\ngst_pipeline = fakesink sync=true\n";
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"}) {
      environment_[name] = home_.path().c_str();
    }
    player_.emplace("quodlibet", QStringList{"--run"}, environment_);
  }
  void play() const {
    constexpr std::chrono::seconds patience{60};
    ASSERT_TRUE(
        waitUntil([&] { return bus.hasName("org.mpris.MediaPlayer2.quodlibet"); }, patience));
    outputOf("quodlibet", {"--refresh"}, environment_);
    const auto isInLibrary = [&] {
      return outputOf("quodlibet", {"--print-query", "First Light"}, environment_) == file_;
    };
    ASSERT_TRUE(waitUntil(isInLibrary, patience));
    outputOf("quodlibet", {"--play-file", file_}, environment_);
    ASSERT_TRUE(waitUntil([] { return trackText(code("pnam")) == "First Light"; }, patience));
  }
  /// The rating of the song that plays, as the player itself prints it.
  QString printed() const {
    return outputOf("quodlibet", {"--print-playing", "<~#rating>"}, environment_);
  }
  void rate(const char* rating) const {
    auto message =
        QDBusMessage::createMethodCall("net.sacredchao.QuodLibet", "/net/sacredchao/QuodLibet",
                                       "net.sacredchao.QuodLibet", "Rate");
    message << rating;
    bus.connection().send(message);
  }
  static std::int64_t shown() { return track()->propertyWithCode(code("pRte"))->integerValue(); }

  const QString file_ = Media::shared().files().front();
  const TemporaryFolder home_;
  desktop::RatingsStore store_{home_.path() / "ratings.sqlite"};

 private:
  const Display display_{bus};
  Environment environment_;
  std::optional<Program> player_;
};

TEST_F(QuodLibet, TakesTheStarsIntoItsLibraryAndTheLastHandWins) {
  follow({.ratings = &store_});
  play();
  track()->propertyWithCode(code("pRte"))->setTo(70);
  EXPECT_EQ(shown(), 70);
  EXPECT_TRUE(waitUntil([&] { return printed() == "0.70"; }));
  const desktop::TrackIdentity identity{.artist = "The Tides",
                                        .album = "Harbour",
                                        .title = "First Light",
                                        .length = Media::trackSeconds};
  EXPECT_TRUE(waitUntil([&] {
    const auto note = store_.trackRating(identity, "quodlibet").note;
    return note && note->state == desktop::LibraryNote::State::written;
  }));
  rate("0.2");
  EXPECT_TRUE(waitUntil([&] { return printed() == "0.20"; }));
  EXPECT_TRUE(waitUntil([] { return shown() == 20; }));
}

}  // namespace
}  // namespace tests
