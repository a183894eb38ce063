#include "tests/integration/mpv.h"

namespace tests {

Media::Media() {
  const auto make = [this](const QString& input, const QStringList& options, const char* name) {
    const auto path = folder_.path() / name;
    outputOf("ffmpeg", QStringList{"-v", "error", "-f", "lavfi", "-i", input} + options +
                           QStringList{QString::fromStdString(path.string())});
    if (!std::filesystem::exists(path)) throw std::runtime_error("cannot make media");
    return QString::fromStdString(path.string());
  };
  const auto makeTone = [&](const char* name, const QString& title, const QString& artist,
                            const QString& album) {
    files_ << make(QString("sine=frequency=330:sample_rate=8000:duration=%1").arg(trackSeconds),
                   {"-metadata", "title=" + title, "-metadata", "artist=" + artist, "-metadata",
                    "album=" + album},
                   name);
  };
  make("color=teal:s=96x96", {"-frames:v", "1"}, "cover.jpg");
  makeTone("1.flac", "First Light", "The Tides", "Harbour");
  makeTone("2.flac", "夜の海", "The Tides", "Harbour");
  makeTone("3.flac", "Without an Album", "Solo", "");
}

const Media& Media::shared() {
  static const Media media;
  return media;
}

Mpv::Mpv(const PrivateBus& bus)
    : program_("mpv",
               QStringList{"--no-config", "--no-video", "--ao=null", "--idle",
                           "--script=/usr/lib/mpv-mpris/mpris.so"} +
                   Media::shared().files(),
               bus.environment()) {
  const auto isPlaying = [&] {
    return bus.hasName("org.mpris.MediaPlayer2.mpv") &&
           bus.playerctl({"metadata", "title"}) == "First Light";
  };
  if (!waitUntil(isPlaying)) throw std::runtime_error("mpv does not play");
}

}  // namespace tests
