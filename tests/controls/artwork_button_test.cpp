#include <sstream>
#include <thread>

#include "tests/controls/artwork_fixture.h"
#include "tests/support/instant_http.h"
#include "widget/constants.h"

namespace virelune {
namespace {

using platform::Array;
using platform::Data;
using platform::Dictionary;
using platform::Value;
using tests::nameOf;

class ArtworkButton : public tests::ArtworkFixture {
 protected:
  /// Shows the placeholder and starts a look-up.
  void lookUp(const std::string& artist = "Foo", const std::string& album = "Bar") {
    button->setArtwork_forArtist_withAlbum_download(image("placeholder"), artist, album, true);
  }
  static Dictionary entry(const std::string& artist, const std::string& album,
                          const std::string& cover) {
    return {{"artistName", artist}, {"collectionName", album}, {"artworkUrl100", cover}};
  }
  static std::string reply(const std::string& cover = "https://img.example/100x100.jpg") {
    return R"({"resultCount":1,"results":[{"artistName":"foo","collectionName":"BAR",)"
           R"("artworkUrl100":")" +
           cover + R"("}]})";
  }
  std::string shown() const { return nameOf(button->image()); }
};

TEST_F(ArtworkButton, TermKeepsQuerySyntaxAndEscapesTheRest) {
  lookUp("A & B = C+D", "50% \"Ü\" #1 👋 e\u0301");
  EXPECT_EQ(http.last().request.url,
            "https://itunes.apple.com/search?term=A+&+B+=+C+D+50%25+%22%C3%9C%22+%231+"
            "%F0%9F%91%8B+e%CC%81&entity=album");
}

TEST_F(ArtworkButton, CoverArrivesInTheLargeSize) {
  lookUp();
  http.answer(0, reply("https://img.example/100x100/a-100x100.jpg"));
  ASSERT_EQ(http.count(), 2U);
  EXPECT_EQ(http.at(1).request.url, "https://img.example/1000x1000/a-1000x1000.jpg");
  EXPECT_EQ(shown(), "placeholder");
  http.answer(1, tests::imageBytes("cover"));
  EXPECT_EQ(button->contentURLSessionDataTask(), nullptr);
  EXPECT_EQ(shown(), "placeholder");  // shown on the main thread, in its next pass
  clock.settle();
  EXPECT_EQ(shown(), "cover");
  EXPECT_FALSE(button->cancelDownload(nullptr));
}

TEST_F(ArtworkButton, CoverThatIsNoImageBringsThePlaceholder) {
  for (const char* body : {"", "<html>", "(no answer)"}) {
    lookUp();
    http.answer(http.lastIndex(), reply());
    const bool fails = body[0] == '(';
    fails ? http.fail(http.lastIndex()) : http.answer(http.lastIndex(), body);
    clock.settle();
    EXPECT_EQ(shown(), VLImageArtworkBackground) << body;
  }
}

TEST_F(ArtworkButton, ReplyWithoutAUsableCoverEndsTheLookUpQuietly) {
  std::istringstream bad(R"(
nonsense
7
null
[]
{}
{"results":[]}
{"results":{}}
{"results":[null,7,"Foo",[],{}]}
{"results":[{"artistName":7,"collectionName":"Bar","artworkUrl100":"https://x/"}]}
{"results":[{"artistName":"The Foo","collectionName":"Bar","artworkUrl100":"https://x/"}]}
{"results":[{"artistName":"Foo","collectionName":"Ba","artworkUrl100":"https://x/"}]}
{"results":[{"artistName":"Foo","collectionName":"Bar","artworkUrl100":""}]}
{"results":[{"artistName":"Foo","collectionName":"Bar","artworkUrl100":"not an address"}]}
(no answer))");
  std::size_t requests = 0;
  for (std::string body; std::getline(bad, body);) {
    lookUp();
    body[0] == '(' ? http.fail(http.lastIndex()) : http.answer(http.lastIndex(), body);
    clock.settle();
    EXPECT_EQ(http.count(), ++requests) << body;
    EXPECT_EQ(button->contentURLSessionDataTask(), nullptr);
    EXPECT_EQ(shown(), "placeholder");
  }
}

TEST_F(ArtworkButton, WithoutArtistOrAlbumOrDownloadNothingIsAsked) {
  EXPECT_FALSE(button->startDownloadForArtist_withAlbum(std::nullopt, "Bar"));
  EXPECT_FALSE(button->startDownloadForArtist_withAlbum("Foo", ""));
  button->setArtwork_forArtist_withAlbum_download(image("own"), "Foo", "Bar", false);
  EXPECT_EQ(http.count(), 0U);
  lookUp();
  EXPECT_FALSE(button->startDownloadForArtist_withAlbum("", "Bar"));
  EXPECT_TRUE(http.at(0).cancelled);
}

TEST_F(ArtworkButton, ExactAlbumGoesBeforeAPartialOneAndTheArtistMustMatchWhole) {
  const Array items{Value(7), entry("Foo Fighters", "Bar", "wrong artist"),
                    entry("FOO", "Bar (Deluxe Edition)", "partial"), entry("foo", "bar", "exact"),
                    entry("Foo", "Bar", "second")};
  const auto address = [&](const std::string& album, std::size_t count) {
    return VLArtworkButton::iTMSfindArtworkAddressForArtist_withAlbum_inItems(
        "Foo", album, Array(items.begin(), items.begin() + static_cast<std::ptrdiff_t>(count)));
  };
  EXPECT_EQ(address("Bar", 2), std::nullopt);
  EXPECT_EQ(address("Bar", 3), "partial");
  EXPECT_EQ(address("Bar", 5), "exact");
  EXPECT_EQ(address("deluxe", 5), "partial");
  EXPECT_EQ(
      VLArtworkButton::iTMSfindValueForArtist_withAlbum_inItems_withKey("Foo", "Bar", items, ""),
      std::nullopt);
}

// Orderings: what was superseded changes nothing.

TEST_F(ArtworkButton, NewImageOrLookUpCancelsTheOneInFlight) {
  lookUp();
  button->setImage(image("own"));
  EXPECT_TRUE(http.at(0).cancelled);
  http.fail(0);
  lookUp("Foo", "Other");
  lookUp();
  EXPECT_TRUE(http.at(1).cancelled);
  http.fail(1);
  EXPECT_NE(button->contentURLSessionDataTask(), nullptr);
  http.answer(2, reply());
  lookUp();
  EXPECT_TRUE(http.at(3).cancelled);
  http.fail(3);  // no bytes, which must not bring the placeholder of the bundle back
  clock.settle();
  EXPECT_EQ(shown(), "placeholder");
  EXPECT_EQ(http.inFlight(), 1U);
  EXPECT_NE(button->contentURLSessionDataTask(), nullptr);
}

TEST_F(ArtworkButton, CoverThatWaitsForTheMainThreadGivesWayToANewerImage) {
  lookUp();
  http.answer(0, reply());
  http.answer(1, tests::imageBytes("stale"));
  button->setImage(image("newer"));
  clock.settle();
  EXPECT_EQ(shown(), "newer");

  lookUp();
  http.answer(2, reply());
  http.answer(3, tests::imageBytes("stale"));
  lookUp();
  clock.settle();
  EXPECT_EQ(shown(), "placeholder");
  EXPECT_EQ(http.inFlight(), 1U);
}

TEST_F(ArtworkButton, ReplyOfARequestLeftBehindStartsNothing) {
  lookUp();
  button->setImage(image("newer"));
  constexpr VLArtworkButton::Request leftBehind = 0;
  const Data late = Data::fromText(reply());
  EXPECT_FALSE(button->handleIncomingJSONData_forArtist_withAlbum(late, "Foo", "Bar", leftBehind));
  EXPECT_FALSE(button->startDownloadForArtwork("https://img.example/a", leftBehind));
  EXPECT_EQ(http.count(), 1U);
}

TEST_F(ArtworkButton, AnswersFromAnotherThreadNeverTakeThePlaceOfALaterImage) {
  {
    tests::ThreadedHTTP network([](const std::string& url) {
      const bool isSearch = url.find("/search?") != std::string::npos;
      return isSearch ? Data::fromText(reply()) : tests::imageBytes("found");
    });
    platform_.http = &network;
    for (int i = 0; i < 300; ++i) {
      lookUp();
      for (int pass = 0; pass < i % 40; ++pass) clock.runLoop().runPass();
      button->setImage(image("own"));
      clock.runLoop().runPass();
      ASSERT_EQ(shown(), "own");
    }
    lookUp();
    while (shown() != "found") {
      std::this_thread::yield();
      clock.runLoop().runPass();
    }
    lookUp();
    button->removeFromSuperview();
    button = nullptr;
  }
  platform_.http = &http;
  clock.settle();
}

TEST_F(ArtworkButton, DestructionEndsTheLookUp) {
  lookUp();
  button->removeFromSuperview();
  button = nullptr;
  EXPECT_TRUE(http.at(0).cancelled);
  http.fail(0);
  clock.settle();
}

}  // namespace
}  // namespace virelune
