#include "radio/beats1_info_loader.h"

#include "tests/support/listener.h"
#include "tests/support/widget_fixture.h"

using platform::Data;
using virelune::VLBeats1InfoLoader;
using namespace std::string_literals;

namespace {

/// An ID3v2 text frame; the content begins with its encoding byte.
std::string frame(std::string_view identifier, std::string_view content) {
  std::string bytes(identifier);
  const auto size = static_cast<std::uint32_t>(content.size());
  for (const unsigned shift : {24U, 16U, 8U, 0U}) bytes += static_cast<char>(size >> shift & 0xFFU);
  return bytes.append(2, '\0').append(content);
}

/// The tag of a segment with all that the station sends.
std::string segmentHead(std::string_view title, std::string_view artist, std::string_view album,
                        std::string_view artwork) {
  const auto text = [](std::string_view words) { return "\3" + std::string(words) + '\0'; };
  return std::string("ID3\4\0\0\0\0\x02\x01", 10) + frame("TIT2", text(title)) +
         frame("TPE1", text(artist)) + frame("TALB", text(album)) +
         frame("WXXX", "\3artworkURL_640x" + std::string(1, '\0') + std::string(artwork)) +
         std::string(64, '\xFF');
}

const std::string base = "http://radio.example/streams/hub02/session02/64k/";
const std::string cover = "http://art.example/cover.jpg";

struct LiveProgramme : tests::WidgetFixture {
  LiveProgramme() {
    bundle->setInfoDictionaryEntry("VLStreamHost", "radio.example");
    platform_.defaultCenter->addObserver(listener.get(), &tests::Listener::heard,
                                         virelune::VLBeats1InfoLoaderNotificationName_Update);
    listener->onCall = [this] { titles.push_back(loader->infoTrackName().value_or("-")); };
  }

  /// A playlist of five segments; the third from the end starts then, at first just now.
  std::string playlist(const std::string& start = "20160305T140709Z") {
    return "#EXTM3U\n#EXT-X-TARGETDURATION:10\nlive-1.aac\nlive-2.aac\nlive-" + start +
           ".aac\nlive-4.aac\nlive-5.aac\n";
  }
  /// Answers the last request; without a body it fails.
  void receive(const std::string& body) {
    body.empty() ? http.fail(http.lastIndex()) : http.answer(http.lastIndex(), body);
    clock.settle();
  }
  void receiveCycle(const std::string& title) {
    receive(playlist());
    receive(segmentHead(title, "Artist", "Album", cover));
    receive("image:cover");
  }
  double secondsToNextCycle() {
    const auto deadline = clock.runLoop().nextDeadline();
    return deadline ? *deadline - clock.now() : -1;
  }

  std::vector<std::string> titles;  ///< at each of the updates
  std::shared_ptr<tests::Listener> listener = platform::make<tests::Listener>();
  std::shared_ptr<VLBeats1InfoLoader> loader = platform::make<VLBeats1InfoLoader>();
};

TEST_F(LiveProgramme, FollowsTheStationCycleByCycle) {
  using Headers = std::vector<std::pair<std::string, std::string>>;
  const Headers fresh = {{"Cache-Control", "no-cache"}, {"Pragma", "no-cache"}};
  const Headers ranged = {{"Range", "bytes=0-8192"}, fresh[0], fresh[1]};
  const auto expectRequest = [this](const std::string& url, const Headers& headers) {
    EXPECT_EQ(http.last().request.url, url);
    EXPECT_EQ(http.last().request.headers, headers);
    EXPECT_EQ(http.last().request.timeout, 3.0);
  };
  ASSERT_TRUE(loader->start(nullptr));
  expectRequest(base + "prog.m3u8", fresh);
  receive(playlist("20160305T140644Z"));  // 25 seconds ago
  expectRequest(base + "live-20160305T140644Z.aac", ranged);
  receive(segmentHead("Title", "Artist", "Album", cover));
  expectRequest(cover, fresh);
  EXPECT_TRUE(titles.empty()) << "nothing is told before the artwork has been tried";
  receive("image:cover");
  EXPECT_EQ(titles, std::vector{"Title"s});
  EXPECT_EQ(loader->infoTrackArtist(), "Artist");
  EXPECT_EQ(loader->infoTrackAlbum(), "Album");
  EXPECT_EQ(tests::nameOf(loader->infoTrackArtwork()), "cover");
  EXPECT_DOUBLE_EQ(secondsToNextCycle(), 16);
  clock.advance(16);
  expectRequest(base + "prog.m3u8", fresh);
  EXPECT_EQ(loader->infoTrackName(), std::nullopt) << "a record never mixes two cycles";
  receiveCycle("Next");
  EXPECT_EQ(titles, (std::vector{"Title"s, "Next"s}));
  EXPECT_EQ(http.count(), 6U);
}

TEST_F(LiveProgramme, ChoosesTheSegmentNearTheLiveEdge) {
  const std::map<std::string, std::string> chosen = {
      {"a.aac\nb.aac\nc.aac\nd.aac\ne.aac\n", "c.aac"},
      {"a.aac\nb.aac\nc.aac\nd.aac", "b.aac"},
      {"a.aac\nb.aac\nc.aac", "c.aac"},
      {"a.aac\nb.aac", "b.aac"},
      {"#EXTM3U\r\nonly.AAC\r\nnot.aac?x\r\nnot.aac \r\nnot.aacp\r\n", "only.AAC"},
      {"0.aac\xE2\x80\xA8z.aac\xC2\x85y.aac\x0Bx.aac\xE2\x80\xA9#end", "z.aac"},
      {"sub/a.aac\n.aac", ".aac"}};
  for (const auto& [playlist, name] : chosen) {
    loader->start(nullptr);
    receive(playlist);
    EXPECT_EQ(http.last().request.url, base + name) << playlist;
  }
}

TEST_F(LiveProgramme, EveryFailureEmptiesTheRecordTellsAndTriesAgainFiveSecondsLater) {
  const std::vector<std::vector<std::string>> failures = {
      {""},
      {"\xFFz.aac"},
      {"<html>404 Not Found</html>"},
      {"a b.aac"},
      {playlist(), ""},
      {playlist(), frame("TIT2", "\3Title")},  // no artwork address
      {playlist(), segmentHead("Title", "", "", "http://a b/c.jpg")}};
  for (const auto& answers : failures) {
    titles.clear();
    loader->start(nullptr);
    for (const std::string& answer : answers) receive(answer);
    EXPECT_EQ(titles, std::vector{"-"s});
    EXPECT_FALSE(loader->contentTrackInfo());
    EXPECT_NEAR(secondsToNextCycle(), 5, 1e-6);
    const std::size_t requests = http.count();
    clock.advance(4.9);
    EXPECT_EQ(http.count(), requests);
    clock.advance(0.2);
    EXPECT_EQ(http.count(), requests + 1);
    receiveCycle("Title");
    EXPECT_EQ(titles, (std::vector{"-"s, "Title"s}));
  }
}

TEST_F(LiveProgramme, TheNextCycleIsDueASecondAfterTheDistanceToTheSegmentsEnd) {
  const std::string duration = "#EXT-X-TARGETDURATION:10\n";
  const std::string now = "x-20160305T140709";
  const std::map<std::string, double> delays = {
      {duration + now + "Z.aac", 11},
      {duration + "x-20160305T140714Z.aac", 16},
      {duration + "x-20160305T140644Z.aac", 16},
      {duration + "20160305T150709+0100.aac", 11},
      {duration + "x-20160305T153709+01:30.aac", 11},
      {"#ext-x-targetduration: 7.5 s\n" + now + "Z.aac", 8.5},
      {"#EXT-X-TARGETDURATION:0\n#TARGETDURATION\nTARGETDURATION=x:+3\n" + now + "Z.aac", 4},
      // Without a date or a duration.
      {now + "Z.aac", 5},
      {"#EXT-X-TARGETDURATION:-4\n" + now + "Z.aac", 5},
      {"#EXT-X-TARGETDURATION:inf\n#EXT-X-TARGETDURATION:1e999\n" + now + "Z.aac", 5},
      {duration + "x-.aac", 5},
      {duration + "x-20160305T140709Z-5.aac", 5},
      {duration + "x-20160305T140709.aac", 5},
      {duration + "20160305T140709Z.aac", 11},
      {duration + "20160305T140709Z.x.aac", 5}};
  for (const auto& [playlist, delay] : delays) {
    loader->start(nullptr);
    receive(playlist);
    receive("artwork" + cover);
    receive("<html>404 Not Found</html>");
    EXPECT_DOUBLE_EQ(secondsToNextCycle(), delay) << playlist;
    EXPECT_EQ(loader->artworkWebAddress(), cover) << "missing texts and artwork fail no cycle";
    EXPECT_EQ(loader->infoTrackArtwork(), nullptr);
  }
}

TEST_F(LiveProgramme, AStoppedOrDestroyedLoaderChangesNothingHoweverLateItsBytesArrive) {
  const std::vector<std::string> answers = {playlist(), segmentHead("T", "A", "B", cover),
                                            "image:c"};
  for (const bool isDestroyed : {false, true}) {
    for (std::size_t received = 0; received <= answers.size(); ++received) {
      loader = platform::make<VLBeats1InfoLoader>();
      loader->start(nullptr);
      for (std::size_t step = 0; step < received; ++step) receive(answers[step]);
      titles.clear();
      if (isDestroyed) {
        loader.reset();
      } else {
        EXPECT_TRUE(loader->stop(nullptr));
        EXPECT_FALSE(loader->stop(nullptr));
        EXPECT_EQ(loader->contentLoadingAction(), virelune::VLBeats1InfoLoadingNone);
        EXPECT_FALSE(loader->contentTrackInfo());
      }
      const std::size_t requests = http.count();
      EXPECT_EQ(http.inFlight(), 0U);
      if (!http.last().completed) receive(answers[received]);
      clock.advance(60);
      EXPECT_TRUE(titles.empty());
      EXPECT_EQ(http.count(), requests);
      EXPECT_EQ(clock.runLoop().scheduledTimerCount(), 0U);
    }
  }
}

std::optional<std::string> text(std::string_view identifier, const std::string& bytes) {
  return VLBeats1InfoLoader::trackInfoTextForKey_fromData(identifier, Data::fromText(bytes));
}

std::optional<std::string> title(const std::string& content) {
  return text("TIT2", "ID3" + frame("TIT2", content) + std::string(8, '\xFF'));
}

VLBeats1InfoLoader::BytesRange range(const std::string& bytes) {
  return VLBeats1InfoLoader::trackInfoBytesRangeForKey_fromData("TIT2", Data::fromText(bytes));
}

std::optional<std::string> artwork(const std::string& bytes) {
  return VLBeats1InfoLoader::trackInfoArtworkWebAddressFromData(Data::fromText(bytes));
}

TEST(SegmentTags, SizesArePlainNumbersOfFourBytesAndWhatTheBytesDoNotHoldIsNotFound) {
  const auto bytes = "..TIT2\0\0\1\5\0\0"s + std::string(260, 'x');
  using Range = VLBeats1InfoLoader::BytesRange;
  EXPECT_EQ(range(bytes), (Range{12, 261}));
  EXPECT_EQ(text("TIT2", bytes), std::nullopt) << "cut short by one byte";
  EXPECT_EQ(text("TIT2", bytes + "x"), std::string(261, 'x'));
  const auto huge = "TIT2\xFF\xFF\xFF\xFF\0\0"s + "abcdefgh";
  EXPECT_EQ(range(huge).length, 0xFFFFFFFFU);
  EXPECT_EQ(text("TIT2", huge), std::nullopt);
  EXPECT_EQ(text("TIT2", frame("TPE1", frame("TIT2", "\3inner")) + frame("TIT2", "\3outer")),
            "inner")
      << "the first one counts, even inside another frame";
  EXPECT_EQ(range("TIT2\0\0\0\1\0\0\3A"s), (Range{10, 1}));
  for (const auto& held : {""s, "TIT2\0\0\0"s, "TIT2\0\0\0\1"s, "TIT2\0\0\0\1\0\0\3"s,
                           "TIT2\0\0\0\0\0\0\3ABC"s, "tit2\0\0\0\1\0\0\3ABC"s}) {
    EXPECT_EQ(range(held), Range()) << held;
  }
}

using Table = std::vector<std::pair<std::string, std::optional<std::string>>>;

TEST(SegmentTags, TextsLoseTheirEncodingByteControlCharactersAndBlankEnds) {
  const Table table = {
      {"\3\xE6\x97\xA5\0"s, "\xE6\x97\xA5"},
      {"\0Plain ASCII"s, "Plain ASCII"},
      {"\3first\0second\0\0third\0"s, "first second  third"},
      {"\3\3x", "x"},
      {"\3 \t\xC2\xA0\xE3\x80\x80x\xE2\x80\xA8\r\n", "x"},
      {"\2\0A\0B"s, "A B"},
      {"\3soft\xC2\xADhyphen\xE2\x80\x8E", "soft hyphen"},
      {"\3", {}},
      {"\3 \0 "s, {}},
      // UTF-16 with a mark, Latin-1, a lone surrogate and an overlong form are not UTF-8.
      {"\1\xFF\xFE\x41\0"s, {}},
      {"\3caf\xE9", {}},
      {"\3\xED\xA0\x80", {}},
      {"\3\xC0\x80", {}}};
  for (const auto& [content, expected] : table) EXPECT_EQ(title(content), expected) << content;
}

TEST(SegmentTags, TheArtworkAddressRunsFromHttpToJpgBehindTheWordArtwork) {
  const Table table = {{"artwork http://a/b.jpg?size=1", "http://a/b.jpg"},
                       {"xxartworkURL\0https://a/b.jpg.jpg"s, "https://a/b.jpg"},
                       {"artwork http://a/b.png http://a/c.jpg", "http://a/b.png http://a/c.jpg"},
                       {"artwork http://a/b\0\xFF.jpg"s, "http://a/b.jpg"},
                       {"artworkhttp.jpg", "http.jpg"},
                       {"http://early/a.jpg artwork", {}},
                       {"artwork http://a/\xFF.jpg", {}},
                       {"Artwork http://a/b.jpg", {}},
                       {"artwork HTTP://a/b.jpg", {}},
                       {"artwork http://a/b.JPG", {}},
                       {"artwork http://a/b.jp", {}},
                       {"", {}}};
  for (const auto& [bytes, expected] : table) EXPECT_EQ(artwork(bytes), expected) << bytes;
}

}  // namespace
