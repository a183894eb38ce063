#include <sstream>
#include <thread>

#include "controls/artwork_button.h"
#include "tests/controls/control_fixture.h"
#include "tests/support/instant_http.h"
#include "widget/constants.h"

namespace virelune {
namespace {

using platform::Array;
using platform::Data;
using platform::Dictionary;
using platform::Value;
using tests::nameOf;

class ArtworkButton : public tests::ControlFixture<VLArtworkButton> {
 protected:
  ArtworkButton() : ControlFixture(platform::NSMakeRect(6, 9, 50, 50)) {}
  /// Shows the placeholder and starts a look-up.
  void lookUp(const std::string& artist = "Foo", const std::string& album = "Bar") {
    control->setArtwork_forArtist_withAlbum_download(image("placeholder"), artist, album, true);
  }
  static std::shared_ptr<platform::NSImage> image(const std::string& name) {
    return platform::make<tests::TestImage>(name, platform::NSSize{10, 10});
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
  std::string shown() const { return nameOf(control->image()); }
};

TEST_F(ArtworkButton, CoverArrivesInTheLargeSizeOfTheAlbumAskedFor) {
  lookUp("A & B = C+D", "50% \"Ü\" #1 👋 e\u0301");
  EXPECT_EQ(http.last().request.url,
            "https://itunes.apple.com/search?term=A+&+B+=+C+D+50%25+%22%C3%9C%22+%231+"
            "%F0%9F%91%8B+e%CC%81&entity=album");
  lookUp();
  http.answer(1, reply("https://img.example/100x100/a-100x100.jpg"));
  ASSERT_EQ(http.count(), 3U);
  EXPECT_EQ(http.at(2).request.url, "https://img.example/1000x1000/a-1000x1000.jpg");
  http.answer(2, tests::imageBytes("cover"));
  EXPECT_EQ(control->contentURLSessionDataTask(), nullptr);
  EXPECT_EQ(shown(), "placeholder") << "shown on the main thread, in its next pass";
  clock.settle();
  EXPECT_EQ(shown(), "cover");
  EXPECT_FALSE(control->cancelDownload(nullptr));
}

TEST_F(ArtworkButton, AnswersWithoutAUsableCoverEndTheLookUpQuietly) {
  std::istringstream bad(R"((no answer)
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
)");
  const auto receive = [this](const std::string& body) {
    body[0] == '(' ? http.fail(http.lastIndex()) : http.answer(http.lastIndex(), body);
    clock.settle();
    EXPECT_EQ(control->contentURLSessionDataTask() == nullptr, http.inFlight() == 0);
  };
  std::size_t requests = 0;
  for (std::string body; std::getline(bad, body);) {
    lookUp();
    receive(body);
    EXPECT_EQ(http.count(), ++requests) << body;
    EXPECT_EQ(shown(), "placeholder");
  }
  for (const char* cover : {"", "<html>", "(no answer)"}) {
    lookUp();
    receive(reply());
    receive(cover);
    EXPECT_EQ(shown(), VLImageArtworkBackground) << "the cover is no image: " << cover;
  }
}

TEST_F(ArtworkButton, WithoutArtistOrAlbumOrDownloadNothingIsAsked) {
  EXPECT_FALSE(control->startDownloadForArtist_withAlbum(std::nullopt, "Bar"));
  EXPECT_FALSE(control->startDownloadForArtist_withAlbum("Foo", ""));
  control->setArtwork_forArtist_withAlbum_download(image("own"), "Foo", "Bar", false);
  EXPECT_EQ(http.count(), 0U);
  lookUp();
  EXPECT_FALSE(control->startDownloadForArtist_withAlbum("", "Bar"));
  EXPECT_TRUE(http.at(0).cancelled);
}

TEST_F(ArtworkButton, ExactAlbumGoesBeforeAPartialOneAndTheArtistMustMatchWhole) {
  const Array items{Value(7),
                    entry("Foo Fighters", "Bar", "wrong artist"),
                    entry("FOO", "Bar (Deluxe Edition)", "partial"),
                    entry("Foo", "Bar (Remix)", "second partial"),
                    entry("foo", "bar", "exact"),
                    entry("Foo", "Bar", "second")};
  const auto found = [&](const std::string& album, std::ptrdiff_t count) {
    return VLArtworkButton::iTMSfindArtworkAddressForArtist_withAlbum_inItems(
        "Foo", album, Array(items.begin(), items.begin() + count));
  };
  EXPECT_EQ(found("Bar", 2), std::nullopt);
  EXPECT_EQ(found("Bar", 4), "partial");
  EXPECT_EQ(found("Bar", 6), "exact");
  EXPECT_EQ(found("deluxe", 6), "partial");
  EXPECT_EQ(found("", 6), std::nullopt);
}

TEST_F(ArtworkButton, DestroyedWhileItSearchesOrLoadsItCancelsAndHearsNothingMore) {
  for (const bool loads : {false, true}) {
    lookUp();
    if (loads) http.answer(http.lastIndex(), reply());
    clock.settle();
    const std::size_t last = http.lastIndex();
    control->removeFromSuperview();
    control = nullptr;
    EXPECT_TRUE(http.at(last).cancelled);
    http.answer(last, reply());
    clock.settle();
    EXPECT_EQ(http.lastIndex(), last);
    control = platform::make<VLArtworkButton>(platform::NSMakeRect(6, 9, 50, 50));
  }
}

TEST_F(ArtworkButton, ClicksWhenReleasedInsideWithoutDimmingInAWindowThatIsNotActiveToo) {
  EXPECT_TRUE(control->acceptsFirstMouse(nullptr));
  for (const auto& [x, clicks] : {std::pair(57, 0), {5, 0}, {55, 1}}) {
    marked.clear();
    sendMouse(platform::NSEventType::leftMouseDown, {30, 30});
    sendMouse(platform::NSEventType::leftMouseUp, {static_cast<double>(x), 30});
    EXPECT_EQ(target->count, clicks) << x;
    EXPECT_TRUE(marked.empty());
  }
}

// Orderings: what was superseded changes nothing.

TEST_F(ArtworkButton, NewImageOrLookUpCancelsTheOneInFlight) {
  lookUp();
  control->setImage(image("own"));
  EXPECT_TRUE(http.at(0).cancelled);
  http.fail(0);
  lookUp("Foo", "Other");
  lookUp();
  EXPECT_TRUE(http.at(1).cancelled);
  http.fail(1);
  EXPECT_NE(control->contentURLSessionDataTask(), nullptr);
  http.answer(2, reply());
  lookUp();
  EXPECT_TRUE(http.at(3).cancelled);
  http.fail(3);  // no bytes, which must not bring the placeholder of the bundle back
  clock.settle();
  EXPECT_EQ(shown(), "placeholder");
  EXPECT_EQ(http.inFlight(), 1U);
  EXPECT_NE(control->contentURLSessionDataTask(), nullptr);
}

TEST_F(ArtworkButton, CoverThatWaitsForTheMainThreadGivesWayToANewerImage) {
  lookUp();
  http.answer(0, reply());
  http.answer(1, tests::imageBytes("stale"));
  control->setImage(image("newer"));
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
      control->setImage(image("own"));
      clock.runLoop().runPass();
      ASSERT_EQ(shown(), "own");
    }
    lookUp();
    while (shown() != "found") {
      std::this_thread::yield();
      clock.runLoop().runPass();
    }
    lookUp();
    control->removeFromSuperview();
    control = nullptr;
  }
  platform_.http = &http;
  clock.settle();
}

}  // namespace
}  // namespace virelune
