// The cover look-up: parsing a search reply and finding the album in it, beside the bare parse of
// the same bytes, as the number of results grows.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <nlohmann/json.hpp>
#include <string>
#include <vector>

#include "controls/artwork_button.h"
#include "platform/foundation/json.h"

namespace {

/// A reply shaped like a real search service's; the album comes last.
std::string reply(int results) {
  std::string text = R"({"resultCount":)" + std::to_string(results) + R"(,"results":[)";
  for (int i = 1; i <= results; ++i) {
    const std::string number = std::to_string(i);
    const std::string album = i == results ? "Bar" : "Barely There, Volume " + number;
    text += (i > 1 ? "," : "") +
            (R"({"wrapperType":"collection","collectionType":"Album","artistId":)" + number) +
            R"(,"collectionId":)" + number + R"(,"artistName":"Foo","collectionName":")" + album +
            R"(","collectionCensoredName":")" + album +
            R"(","artistViewUrl":"https://music.example.com/us/artist/foo/)" + number +
            R"(?uo=4","collectionViewUrl":"https://music.example.com/us/album/bar/)" + number +
            R"(?uo=4","artworkUrl60":"https://img.example.com/image/thumb/)" + number +
            R"(/60x60bb.jpg","artworkUrl100":"https://img.example.com/image/thumb/)" + number +
            R"(/100x100bb.jpg","collectionPrice":9.99,"collectionExplicitness":"notExplicit",)" +
            R"("contentAdvisoryRating":null,"trackCount":12,"copyright":"℗ 2016 Foo Records",)" +
            R"("country":"USA","currency":"USD","releaseDate":"2016-03-05T08:00:00Z",)" +
            R"("primaryGenreName":"Alternative"})";
  }
  return text + "]}";
}

/// Milliseconds that one call takes, the median of some.
template <class Call>
double milliseconds(Call call) {
  std::vector<double> times(15);
  for (double& time : times) {
    const auto begin = std::chrono::steady_clock::now();
    call();
    time =
        std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count();
  }
  std::nth_element(times.begin(), times.begin() + 7, times.end());
  return times[7];
}

}  // namespace

int main() {
  constexpr double limit = 3;
  bool isMet = true;
  const auto button = platform::make<virelune::VLArtworkButton>();
  for (const int results : {10, 100, 1000, 10000}) {
    const std::string text = reply(results);
    const auto data = platform::Data::fromText(text);
    const auto parsed = platform::jsonObjectWithData(data)->as<platform::Dictionary>();
    const bool isFound =
        virelune::VLArtworkButton::iTMSfindInfoForArtist_withAlbum_inItems(
            "foo", "bar", *parsed->at("results").get<platform::Array>()) != nullptr;
    bool isObject = true;
    const double bare =
        milliseconds([&] { isObject = isObject && nlohmann::json::parse(text).is_object(); });
    // Without a network nothing is requested, so this is the parse and the match alone.
    const double lookUp = milliseconds(
        [&] { button->handleIncomingJSONData_forArtist_withAlbum(data, "foo", "bar", 0); });
    const double ratio = lookUp / bare;
    isMet = isMet && isFound && isObject && ratio <= limit;
    std::printf(
        "%5d results, %7zu bytes: parse %8.3f ms, parse and match %8.3f ms, ratio %.2f %s\n",
        results, text.size(), bare, lookUp, ratio, ratio <= limit ? "within 3" : "MISSED 3");
  }
  return isMet ? 0 : 1;
}
