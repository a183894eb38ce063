// Ratings in real players' libraries.
#include <fstream>

#include "desktop/program/worker_pool.h"
#include "tests/integration/bridge_fixture.h"
#include "tests/integration/mpv.h"

namespace tests {
namespace {

using State = desktop::LibraryNote::State;

struct RealLibrary : BridgeFixture {
  RealLibrary() {
    for (const char* name : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"}) {
      environment_[name] = folder.path().c_str();
    }
    follow({.ratings = &ratings});
  }
  QString output(const char* name, const QStringList& arguments) const {
    return outputOf(QString::fromLatin1(name), arguments, environment_);
  }
  static bool waitLong(const std::function<bool()>& condition) {
    return waitUntil(condition, std::chrono::seconds(60));
  }
  static bool plays() {
    return waitLong([] { return title() == "First Light"; });
  }

  const desktop::TrackIdentity track_{
      .artist = "The Tides", .album = "Harbour", .title = "First Light", .length = mediaSeconds};
  const QString file_ = mediaFiles().front();
  const std::filesystem::path music_ = std::filesystem::path(file_.toStdString()).parent_path();
  Environment environment_ = bus.environment();
};

struct Mpd : RealLibrary {
  Mpd() {
    platform::current().globalQueue = &workers_;
    qputenv("MPD_HOST", socket_.toUtf8());
    environment_["MPD_HOST"] = socket_;
  }
  ~Mpd() override { qunsetenv("MPD_HOST"); }

  /// Plays the first file, which the front tells of.
  void play() {
    const std::string home = folder.path();
    std::ofstream(folder.path() / "mpd.conf")
        << "music_directory \"" << music_.native() << "\"\nbind_to_address \""
        << socket_.toStdString() << "\"\ndb_file \"" << home << "/db\"\n"
        << "sticker_file \"" << home << "/stickers\"\n"
        << "audio_output {\ntype \"null\"\nname \"none\"\n}\n";
    server_.emplace("mpd", QStringList{"--no-daemon", (home + "/mpd.conf").c_str()}, environment_);
    ASSERT_TRUE(waitUntil([&] { return !output("mpc", {"version"}).isEmpty(); }));
    for (const QStringList& command :
         {QStringList{"update", "--wait"}, {"add", "1.flac"}, {"play"}}) {
      output("mpc", command);
    }
    front_.emplace("mpDris2", QStringList{QString("--music-dir=") + music_.c_str()}, environment_);
    ASSERT_TRUE(plays());
  }
  QString sticker() const { return output("mpc", {"sticker", "1.flac", "get", "rating"}); }

 private:
  const QString socket_ = QString::fromStdString(folder.path() / "socket");
  desktop::WorkerPool workers_;
  std::optional<Program> server_, front_;
};

TEST_F(Mpd, TakesTheStarsIntoItsStickers) {
  play();
  rating()->setTo(70);
  EXPECT_TRUE(isNoted(track_, "mpd", State::written));
  EXPECT_EQ(sticker(), "rating=7");
  for (int stars = 0; stars <= 100; ++stars) rating()->setTo(stars);
  rating()->setTo(40);
  EXPECT_TRUE(isNoted(track_, "mpd", State::written));
  EXPECT_EQ(sticker(), "rating=4") << "the last one";
}

struct QuodLibet : RealLibrary {
  QuodLibet() { environment_.merge(display_.environment()); }

 private:
  const Display display_{bus};
};

TEST_F(QuodLibet, TakesTheStarsIntoItsLibraryAndTheLastHandWins) {
  std::filesystem::create_directory(folder.path() / "quodlibet");
  std::ofstream(folder.path() / "quodlibet/config")
      << "[settings]\nscan = " << music_.native() << "\n[plugins]\nactive_plugins = mpris\n"
      << "[player]\ngst_pipeline = fakesink sync=true\n";
  const Program player("quodlibet", {"--run"}, environment_);
  ASSERT_TRUE(waitLong([&] { return bus.hasName("org.mpris.MediaPlayer2.quodlibet"); }));
  output("quodlibet", {"--refresh"});
  ASSERT_TRUE(waitLong([&] {
    return output("quodlibet", {"--print-query", "First Light"}) == file_;
  }));
  output("quodlibet", {"--play-file", file_});
  ASSERT_TRUE(plays());
  /// What the player itself prints.
  const auto prints = [&](const char* rating) {
    return waitUntil([&] {
      return output("quodlibet", {"--print-playing", "<~#rating>"}) == rating;
    });
  };
  rating()->setTo(70);
  EXPECT_EQ(rating()->integerValue(), 70);
  EXPECT_TRUE(prints("0.70"));
  EXPECT_TRUE(isNoted(track_, "quodlibet", State::written));
  auto message = QDBusMessage::createMethodCall(
      "net.sacredchao.QuodLibet", "/net/sacredchao/QuodLibet", "net.sacredchao.QuodLibet", "Rate");
  message << "0.2";
  bus.connection().send(message);
  EXPECT_TRUE(prints("0.20"));
  EXPECT_TRUE(waitForRating(20));
}

}  // namespace
}  // namespace tests
