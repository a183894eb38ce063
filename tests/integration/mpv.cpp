#include "tests/integration/mpv.h"

#include <stdexcept>

#include "tests/support/temporary_folder.h"

namespace tests {

const QStringList& mediaFiles() {
  static const TemporaryFolder folder;
  static QStringList files;
  const auto make = [](const char* name, const QString& input, const QStringList& options) {
    files << QString::fromStdString(folder.path() / name);
    outputOf("ffmpeg", QStringList{"-v", "error", "-f", "lavfi", "-i", input} + options +
                           QStringList{files.back()});
    if (!std::filesystem::exists(folder.path() / name))
      throw std::runtime_error("cannot make media");
  };
  if (!files.isEmpty()) return files;
  for (const auto& [name, title, artist, album] :
       {std::tuple("1.flac", "First Light", "The Tides", "Harbour"),
        {"2.flac", "夜の海", "The Tides", "Harbour"},
        {"3.flac", "Without an Album", "Solo", ""}}) {
    make(name, QString("sine=frequency=330:sample_rate=8000:duration=%1").arg(mediaSeconds),
         {"-metadata", QString("title=") + title, "-metadata", QString("artist=") + artist,
          "-metadata", QString("album=") + album});
  }
  make("cover.jpg", "color=teal:s=96x96", {"-frames:v", "1"});
  files.removeLast();
  return files;
}

Mpv::Mpv(const PrivateBus& bus)
    : program_("mpv",
               QStringList{"--no-config", "--no-video", "--ao=null", "--idle",
                           "--script=/usr/lib/mpv-mpris/mpris.so"} +
                   mediaFiles(),
               bus.environment()) {
  const auto isPlaying = [&] {
    return bus.hasName("org.mpris.MediaPlayer2.mpv") &&
           bus.playerctl({"metadata", "title"}) == "First Light";
  };
  if (!waitUntil(isPlaying)) throw std::runtime_error("mpv does not play");
}

}  // namespace tests
