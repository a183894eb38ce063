#include "tests/integration/encoded_station.h"

#include <array>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>

namespace tests {

namespace {

constexpr std::time_t segmentSeconds = 4;

std::string made(const std::string& arguments, const std::filesystem::path& file) {
  const std::string command = "ffmpeg -v error -f lavfi " + arguments + " " + file.string();
  if (std::system(command.c_str()) != 0) throw std::runtime_error(command);
  std::ostringstream bytes;
  bytes << std::ifstream(file, std::ios::binary).rdbuf();
  return bytes.str();
}

constexpr const char* sound = "-i sine=frequency=440 -t 4 -c:a aac -b:a 64k -f adts";

/// The segments of the last 20 seconds, by names that begin so.
std::string playlist(const std::string& beginning) {
  const std::time_t current = std::time(nullptr) / segmentSeconds;
  std::string text = "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:4\n#EXT-X-MEDIA-SEQUENCE:" +
                     std::to_string(current - 5) + "\n";
  for (std::time_t number = current - 5; number < current; ++number) {
    const std::time_t start = number * segmentSeconds;
    std::tm utc{};
    std::array<char, 64> name{};
    std::strftime(name.data(), name.size(), "-%Y%m%dT%H%M%SZ.aac\n", gmtime_r(&start, &utc));
    text += "#EXTINF:4,\n" + beginning + name.data();
  }
  return text;
}

}  // namespace

EncodedStation::EncodedStation(const std::string& title, const std::string& artist,
                               const std::string& album)
    : cover_(made("-i color=teal:s=96x96 -frames:v 1", folder_.path() / "cover.jpg")),
      server_([this](Exchange& exchange) { answer(exchange); }) {
  plainSegment_ = made(sound, folder_.path() / "plain.aac");
  std::string tagged = sound;
  for (const auto& [key, value] : {std::pair<const char*, std::string>("title", title),
                                   {"artist", artist},
                                   {"album", album},
                                   {"artwork", server_.address("/cover.jpg")}}) {
    tagged.append(" -metadata ").append(key).append("='").append(value).append("'");
  }
  segment_ = made(tagged.append(" -write_id3v2 1"), folder_.path() / "segment.aac");
}

std::string EncodedStation::streamAddress() const {
  return server_.address("/streams/hub02/session02/64k/listen.m3u8");
}

void EncodedStation::answer(Exchange& exchange) const {
  exchange.keepsAlive = true;
  if (exchange.target.ends_with("prog.m3u8")) {
    exchange.send(reply(playlist("live")));
  } else if (exchange.target.ends_with("listen.m3u8")) {
    exchange.send(reply(playlist("plain")));
  } else if (exchange.target.find("/plain-") != std::string::npos) {
    exchange.send(reply(plainSegment_));
  } else if (exchange.target == "/cover.jpg") {
    exchange.send(reply(cover_));
  } else if (exchange.head.find("Range: bytes=0-8192\r\n") != std::string::npos) {
    exchange.send(reply(segment_.substr(0, 8193), "206 Partial Content"));
  } else {
    exchange.send(reply(segment_));
  }
}

}  // namespace tests
