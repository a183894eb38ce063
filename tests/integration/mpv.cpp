#include "tests/integration/mpv.h"

#include <array>
#include <stdexcept>

namespace tests {

namespace {

struct Tags {
  const char* title;
  const char* artist;
  const char* album;
};

constexpr std::array kTags = {
    Tags{"First Light", "The Tides", "Harbour"},
    Tags{"夜の海", "The Tides", "Harbour"},
    Tags{"Without an Album", "Solo", ""},
};

QString text(const std::filesystem::path& path) { return QString::fromStdString(path.string()); }

QStringList playerArguments() {
  QStringList arguments = {QStringLiteral("--no-config"), QStringLiteral("--no-video"),
                           QStringLiteral("--ao=null"), QStringLiteral("--idle"),
                           QStringLiteral("--script=/usr/lib/mpv-mpris/mpris.so")};
  for (const auto& file : Media::shared().files()) arguments << text(file);
  return arguments;
}

}  // namespace

const Media& Media::shared() {
  static const Media media;
  return media;
}

Media::Media() : cover_(folder_.path() / "cover.jpg") {
  outputOf(QStringLiteral("ffmpeg"),
           {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-f"),
            QStringLiteral("lavfi"), QStringLiteral("-i"), QStringLiteral("color=teal:s=96x96"),
            QStringLiteral("-frames:v"), QStringLiteral("1"), text(cover_)});
  for (const Tags& tags : kTags) {
    files_.push_back(folder_.path() / (std::to_string(files_.size()) + ".flac"));
    const auto tag = [](const char* key, const char* value) {
      return QStringLiteral("%1=%2").arg(QString::fromUtf8(key), QString::fromUtf8(value));
    };
    outputOf(QStringLiteral("ffmpeg"),
             {QStringLiteral("-v"), QStringLiteral("error"), QStringLiteral("-f"),
              QStringLiteral("lavfi"), QStringLiteral("-i"),
              QStringLiteral("sine=frequency=330:sample_rate=8000:duration=%1").arg(kSeconds),
              QStringLiteral("-metadata"), tag("title", tags.title), QStringLiteral("-metadata"),
              tag("artist", tags.artist), QStringLiteral("-metadata"), tag("album", tags.album),
              text(files_.back())});
    if (!std::filesystem::exists(files_.back())) throw std::runtime_error("cannot make media");
  }
}

Mpv::Mpv(const PrivateBus& bus)
    : program_(QStringLiteral("mpv"), playerArguments(), bus.environment()) {
  const auto isPlaying = [&bus] {
    return bus.hasName(QStringLiteral("org.mpris.MediaPlayer2.mpv")) &&
           bus.playerctl({QStringLiteral("metadata"), QStringLiteral("title")}) ==
               QString::fromUtf8(kTags.front().title);
  };
  if (!waitUntil(isPlaying)) throw std::runtime_error("mpv does not play");
}

}  // namespace tests
