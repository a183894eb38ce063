// The live programme: the searches in the head of a segment beside plain memmem over the same
// bytes, and what a playlist costs as it grows.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <random>
#include <string>
#include <vector>

#include "radio/beats1_info_loader.h"

namespace {

using platform::Data;
using virelune::VLBeats1InfoLoader;

/// Microseconds that one call takes, the median of some, each of as many calls in a row.
template <class Call>
double microseconds(int callsInARow, Call call) {
  std::array<double, 31> times{};
  for (double& time : times) {
    const auto begin = std::chrono::steady_clock::now();
    for (int count = 0; count < callsInARow; ++count) {
      call();
      benchmark::ClobberMemory();  // or one search would stand for all
    }
    const auto elapsed = std::chrono::steady_clock::now() - begin;
    time = std::chrono::duration<double, std::micro>(elapsed).count() / callsInARow;
  }
  std::nth_element(times.begin(), times.begin() + times.size() / 2, times.end());
  return times[times.size() / 2];
}

/// Audio without a tag, so that every search goes to the end.
std::string audio() {
  std::mt19937 random(8193);
  std::string bytes(8193, '\0');
  std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<char>(random() & 0xFFU); });
  return bytes;
}

bool measureSearches() {
  constexpr double limit = 1.3;
  const std::string bytes = audio();
  const Data head = Data::fromText(bytes);
  int found = 0;
  const double sweep = microseconds(200, [&] {
    for (const char* needle : {"TALB", "TPE1", "TIT2", "artwork"}) {
      benchmark::DoNotOptimize(needle);
      if (memmem(bytes.data(), bytes.size(), needle, std::strlen(needle)) != nullptr) ++found;
    }
  });
  const double searches = microseconds(200, [&] {
    for (const char* identifier : {"TALB", "TPE1", "TIT2"}) {
      if (VLBeats1InfoLoader::trackInfoTextForKey_fromData(identifier, head)) ++found;
    }
    if (VLBeats1InfoLoader::trackInfoArtworkWebAddressFromData(head)) ++found;
  });
  const bool isMet = found == 0 && searches / sweep <= limit;
  std::printf("segment head: memmem %.2f us, four searches %.2f us, ratio %.2f %s %g\n", sweep,
              searches, searches / sweep, isMet ? "within" : "MISSED", limit);
  return isMet;
}

std::string playlist(int segments) {
  std::string text = "#EXTM3U\n#EXT-X-VERSION:3\n#EXT-X-TARGETDURATION:10\n";
  for (int number = 0; number < segments; ++number) {
    std::array<char, 64> lines{};
    std::snprintf(lines.data(), lines.size(), "#EXTINF:9.98,\nlive-20160305T14%02d%02dZ.aac\n",
                  number / 60 % 60, number % 60);
    text += lines.data();
  }
  return text;
}

bool measurePlaylists() {
  constexpr double limitPerSegment = 3;  // times what one of five hundred costs
  constexpr double longest = 1000;       // microseconds for a normal playlist
  bool areMet = true;
  double usual = 0;
  for (const int segments : {5, 50, 500, 5000, 50'000}) {
    const auto loader = platform::make<VLBeats1InfoLoader>();
    const Data data = Data::fromText(playlist(segments));
    bool hasDuration = true;
    // Without a network the step ends where the segment would be requested.
    const double time = microseconds(std::max(1, 5000 / segments), [&] {
      loader->handleReceivedDataForPlaylist(data);
      hasDuration = hasDuration && loader->infoPlaylistDuration() == 10;
    });
    const double each = time / segments;
    if (segments == 500) usual = each;
    const bool isLinear = segments <= 500 || each / usual <= limitPerSegment;
    const bool isShort = segments > 50 || time <= longest;
    areMet = areMet && hasDuration && isLinear && isShort;
    std::printf("playlist of %5d segments: %10.2f us, %.3f us each %s\n", segments, time, each,
                isLinear && isShort ? "" : "MISSED");
  }
  return areMet;
}

}  // namespace

int main() {
  const bool areSearchesMet = measureSearches();
  return measurePlaylists() && areSearchesMet ? 0 : 1;
}
