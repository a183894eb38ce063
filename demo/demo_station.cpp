#include "demo/demo_station.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <ctime>

#include "demo/serving_thread.h"
#include "platform/foundation/date_formatter.h"

namespace demo {
namespace {

constexpr const char* streamFolder = "/streams/hub02/session02/64k/";
constexpr int listedSegments = 6;

std::int64_t secondsNow() {
  const auto now = std::chrono::system_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::seconds>(now).count();
}

std::string segmentName(std::int64_t startSeconds) {
  const std::time_t time = startSeconds;
  std::tm utc{};
  gmtime_r(&time, &utc);
  char name[64];
  const std::size_t length = strftime(name, sizeof name, "live-%Y%m%dT%H%M%SZ.aac", &utc);
  return {name, length};
}

/// Frames and tags stay below 128 bytes, where sizes read the same in ID3v2.3 and ID3v2.4.
void append(std::string& tag, const char* identifier, const std::string& text) {
  const std::string content = ("\3" + text).substr(0, 127);
  tag += identifier;
  tag.append(3, '\0').push_back(static_cast<char>(content.size()));
  tag.append(2, '\0').append(content);
}

std::string taggedSegment(const Programme& programme, const std::string& coverAddress,
                          int duration) {
  std::string frames;
  append(frames, "TIT2", programme.title);
  append(frames, "TPE1", programme.artist);
  append(frames, "TALB", programme.album);
  append(frames, "WXXX", "artworkURL" + std::string(1, '\0') + coverAddress);

  std::string segment("ID3\4\0\0", 6);
  for (const unsigned shift : {21U, 14U, 7U, 0U}) {
    segment += static_cast<char>(frames.size() >> shift & 0x7FU);
  }
  segment += frames;
  // A silent stereo frame of 1024 samples at 44.1 kHz (ISO/IEC 13818-7).
  constexpr std::string_view silence(
      "\xFF\xF1\x50\x80\x02\x1F\xFC\x21\x00\x49\x90\x02\x19\x00\x23\x80", 16);
  for (int frame = 0; frame < duration * 44100 / 1024; ++frame) segment += silence;
  return segment;
}

}  // namespace

class DemoStation::Server {
 public:
  Server(StationPace pace, std::vector<Programme> list)
      : pace_{std::max(1, pace.segmentDuration), std::max(1, pace.segmentsPerProgramme)},
        programmes_(std::move(list)) {
    server_.Get(streamFolder + std::string("prog\\.m3u8"),
                [this](const httplib::Request&, httplib::Response& response) {
                  response.set_content(playlist(), "application/vnd.apple.mpegurl");
                });
    server_.Get(streamFolder + std::string("live-([^/]*)\\.aac"),
                [this](const httplib::Request& request, httplib::Response& response) {
                  answerSegment(request.matches[1], response);
                });
    server_.Get("/covers/(\\d{1,4})\\.jpg",
                [this](const httplib::Request& request, httplib::Response& response) {
                  const auto index = static_cast<std::size_t>(std::stoul(request.matches[1]));
                  if (index >= programmes_.size()) return notFound(response);
                  response.set_content(std::string(programmes_[index].cover.view()), "image/png");
                });
  }

  bool start() { return !programmes_.empty() && thread_.start(); }
  std::string host() const { return thread_.host(); }

 private:
  static void notFound(httplib::Response& response) { response.status = 404; }

  std::string playlist() const {
    const std::int64_t current = secondsNow() / pace_.segmentDuration;
    const std::string duration = std::to_string(pace_.segmentDuration);
    std::string text = "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:" + duration +
                       "\n#EXT-X-MEDIA-SEQUENCE:" + std::to_string(current - listedSegments) + "\n";
    for (std::int64_t number = current - listedSegments; number < current; ++number) {
      text += "#EXTINF:" + duration + ",\n" + segmentName(number * pace_.segmentDuration) + "\n";
    }
    return text;
  }

  void answerSegment(const std::string& startDate, httplib::Response& response) const {
    platform::NSDateFormatter formatter;
    formatter.setDateFormat("yyyyMMdd'T'HHmmssZZZZZ");
    const auto start = formatter.dateFromString(startDate);
    if (!start || start->timeIntervalSince1970 < 0) return notFound(response);
    const auto number = static_cast<std::size_t>(start->timeIntervalSince1970) /
                        static_cast<std::size_t>(pace_.segmentDuration);
    const std::size_t index =
        number / static_cast<std::size_t>(pace_.segmentsPerProgramme) % programmes_.size();
    const std::string cover = "http://" + host() + "/covers/" + std::to_string(index) + ".jpg";
    response.set_content(taggedSegment(programmes_[index], cover, pace_.segmentDuration),
                         "audio/aac");
  }

  const StationPace pace_;
  const std::vector<Programme> programmes_;
  httplib::Server server_;
  ServingThread thread_{server_};
};

std::unique_ptr<DemoStation> DemoStation::start(StationPace pace, std::vector<Programme> list) {
  auto server = std::make_unique<Server>(pace, std::move(list));
  if (!server->start()) return nullptr;
  return std::make_unique<DemoStation>(std::move(server));
}

DemoStation::DemoStation(std::unique_ptr<Server> server) : server_(std::move(server)) {}

DemoStation::~DemoStation() = default;

std::string DemoStation::host() const { return server_->host(); }

std::string DemoStation::streamAddress() const {
  return "http://" + host() + streamFolder + "prog.m3u8";
}

}  // namespace demo
