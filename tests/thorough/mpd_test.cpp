// Ratings in the stickers of a real server behind a real MPRIS front.

#include "desktop/program/worker_pool.h"
#include "tests/integration/bridge_fixture.h"
#include "tests/integration/mpv.h"

namespace tests {
namespace {

using platform::code;
using State = desktop::LibraryNote::State;

class Mpd : public BridgeFixture {
 protected:
  Mpd() {
    platform::current().globalQueue = &workers_;
    qputenv("MPD_HOST", socket_.toUtf8());
    environment_["MPD_HOST"] = socket_;
    for (const char* name : {"HOME", "XDG_CONFIG_HOME"}) environment_[name] = home_.path().c_str();
  }
  ~Mpd() override { qunsetenv("MPD_HOST"); }

  QString mpc(const QStringList& arguments) const {
    return outputOf("mpc", arguments, environment_);
  }
  /// Plays the first file, which the front tells of.
  void play(bool hasStickers) {
    const std::filesystem::path file = Media::shared().files().front().toStdString();
    std::ofstream(home_.path() / "mpd.conf")
        << "music_directory \"" << file.parent_path().native() << "\"\nbind_to_address \""
        << socket_.toStdString() << "\"\ndb_file \"" << home_.path().native() << "/db\"\n"
        << (hasStickers ? "sticker_file \"" + home_.path().native() + "/stickers\"\n" : "")
        << "audio_output {\ntype \"null\"\nname \"none\"\n}\n";
    server_.emplace("mpd", QStringList{"--no-daemon", (home_.path() / "mpd.conf").c_str()},
                    environment_);
    ASSERT_TRUE(waitUntil([&] { return !mpc({"version"}).isEmpty(); }));
    mpc({"update", "--wait"});
    mpc({"add", file.filename().c_str()});
    mpc({"play"});
    front_.emplace("mpDris2", QStringList{"--music-dir=" + QString(file.parent_path().c_str())},
                   environment_);
    ASSERT_TRUE(waitUntil([] { return trackText(code("pnam")) == "First Light"; },
                          std::chrono::seconds(30)));
  }
  bool isNoted(State state) {
    return waitUntil([&] {
      const auto note = store_
                            .trackRating({.artist = "The Tides",
                                          .album = "Harbour",
                                          .title = "First Light",
                                          .length = Media::trackSeconds},
                                         "mpd")
                            .note;
      return note && note->state == state;
    });
  }
  static void rate(int rating) { track()->propertyWithCode(code("pRte"))->setTo(rating); }

  const TemporaryFolder home_;
  const QString socket_ = QString::fromStdString(home_.path() / "socket");
  desktop::RatingsStore store_{home_.path() / "ratings.sqlite"};

 private:
  desktop::WorkerPool workers_;
  Environment environment_ = bus.environment();
  std::optional<Program> server_, front_;
};

TEST_F(Mpd, TakesTheStarsIntoItsStickers) {
  follow({.ratings = &store_});
  play(true);
  rate(70);
  EXPECT_TRUE(isNoted(State::written));
  EXPECT_EQ(mpc({"sticker", "1.flac", "get", "rating"}), "rating=7");
  for (int rating = 0; rating <= 100; ++rating) rate(rating);
  rate(40);
  EXPECT_TRUE(isNoted(State::written));
  EXPECT_EQ(mpc({"sticker", "1.flac", "get", "rating"}), "rating=4") << "the last one";
}

TEST_F(Mpd, KeepsNoneWithoutAStickerFile) {
  follow({.ratings = &store_});
  play(false);
  rate(70);
  EXPECT_TRUE(isNoted(State::none));
}

}  // namespace
}  // namespace tests
