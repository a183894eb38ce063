#include <set>

#include "controls/artwork_button.h"
#include "tests/controls/control_fixture.h"
#include "tests/support/temporary_folder.h"
#include "widget/constants.h"

namespace virelune {
namespace {

using namespace platform;
using testing::ElementsAre;
using tests::nameOf;

struct ArtworkButton : tests::ControlFixture<VLArtworkButton> {
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
  EXPECT_EQ(http.last().request.timeout, 60);
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
[]
{"results":{}}
{"results":[null,7,"Foo",[],{}]}
{"results":[{"artistName":7,"collectionName":"Bar","artworkUrl100":"https://x/"}]}
{"results":[{"artistName":"The Foo","collectionName":"Bar","artworkUrl100":"https://x/"}]}
{"results":[{"artistName":"Foo","collectionName":"Ba","artworkUrl100":"https://x/"}]}
{"results":[{"artistName":"Foo","collectionName":"Bar","artworkUrl100":""}]}
{"results":[{"artistName":"Foo","collectionName":"Bar","artworkUrl100":"not an address"}]})");
  const auto receive = [this](const std::string& body) {
    body[0] == '(' ? http.fail(http.lastIndex()) : http.answer(http.lastIndex(), body);
    clock.settle();
    EXPECT_EQ(control->contentURLSessionDataTask() == nullptr, http.inFlight() == 0);
  };
  for (std::string body; std::getline(bad, body);) {
    lookUp();
    receive(body);
    EXPECT_EQ(http.inFlight(), 0U) << body;
    EXPECT_EQ(shown(), "placeholder");
  }
  const std::size_t requests = http.count();
  for (const auto& [artist, album] : {std::pair("", "Bar"), {"Foo", ""}}) lookUp(artist, album);
  control->setArtwork_forArtist_withAlbum_download(image("own"), "Foo", "Bar", false);
  EXPECT_EQ(http.count(), requests) << "nothing to ask for";
  EXPECT_EQ(shown(), "own");
  for (const char* cover : {"", "<html>", "(no answer)"}) {
    lookUp();
    receive(reply());
    receive(cover);
    EXPECT_EQ(shown(), VLImageArtworkBackground) << "the cover is no image: " << cover;
  }
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

TEST_F(ArtworkButton, WhatWasSupersededOrDestroyedIsCancelledAndChangesNothing) {
  const auto last = [this] { return http.lastIndex(); };
  const std::pair<const char*, std::function<void()>> superseded[] = {
      {"own", [this] { control->setImage(image("own")); }},
      {"placeholder", [this] { lookUp(); }},
      {"(destroyed)", [this] {
         control->removeFromSuperview();
         control = nullptr;
       }}};
  for (const auto& [expected, supersede] : superseded) {
    for (int step = 0; step < 3; ++step) {
      if (!control) control = platform::make<VLArtworkButton>(platform::NSMakeRect(6, 9, 50, 50));
      lookUp();
      if (step > 0) http.answer(last(), reply());
      clock.settle();
      if (step > 1) http.answer(last(), tests::imageBytes("stale"));  // waits for the main thread
      const std::size_t before = last();
      supersede();
      EXPECT_EQ(http.at(before).cancelled, step < 2) << expected;
      // No bytes, which must not bring the placeholder of the bundle back.
      if (step < 2) http.fail(before);
      clock.settle();
      EXPECT_EQ(control ? shown() : "(destroyed)", expected);
      const bool looksUp = control && std::string(expected) == "placeholder";
      EXPECT_EQ(http.inFlight(), looksUp ? 1U : 0U);
      if (looksUp) control->cancelDownload(nullptr);
    }
  }
}

/// A desktop that takes drags, or refuses them, and receives when told.
struct ScriptedDrag final : platform::DragBackend {
  bool begin(std::shared_ptr<NSDraggingSession> session) override {
    if (refuses) return false;
    sessions.push_back(std::move(session));
    return true;
  }
  std::string text(const std::string& type) {
    const auto data = sessions.back()->draggingPasteboard().dataForType(type);
    return data ? std::string(data->view()) : "(none)";
  }
  std::string drop(const std::string& folder) {
    return sessions.back()->draggingPasteboard().receivePromisedFileInDirectory(folder).value_or(
        "(none)");
  }

  bool refuses = false;
  std::vector<std::shared_ptr<NSDraggingSession>> sessions;
};

struct ArtworkDrag : ArtworkButton {
  ArtworkDrag() {
    setenv("TZ", "HERE-1", 1);  // one hour ahead of UTC
    platform_.drag = &desktop;
    control->setImage(image("cover"));
  }
  ~ArtworkDrag() override {
    platform_.drag = nullptr;
    unsetenv("TZ");
  }
  void drag() {
    sendMouse(NSEventType::leftMouseDown, {30, 30});
    sendMouse(NSEventType::leftMouseDragged, {31, 30});
  }
  std::set<std::string> files() const {
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path())) {
      names.insert(entry.path().filename().string());
    }
    return names;
  }

  tests::TemporaryFolder folder;
  const std::string dropFolder = folder.path().string();
  ScriptedDrag desktop;
};

TEST_F(ArtworkDrag, TheFirstMovementBeginsTheOneDragOfAPressAndNothingClicks) {
  drag();
  sendMouse(NSEventType::leftMouseDragged, {40, 30});
  EXPECT_EQ(platform::NSEvent::pressedMouseButtons(), 0U) << "the drag has taken the press over";
  sendMouse(NSEventType::leftMouseUp, {40, 30});
  EXPECT_EQ(target->count, 0);
  ASSERT_EQ(desktop.sessions.size(), 1U);
  auto& session = *desktop.sessions.front();
  EXPECT_EQ(session.draggingLocation(), (platform::NSPoint{25, 21}));
  EXPECT_EQ(session.items().front()->draggingFrame(), control->bounds());
  EXPECT_EQ(session.items().front()->contents(), control->image());
  click({30, 30});
  EXPECT_EQ(target->count, 1) << "the next press is a press again";
  control->removeFromSuperview();
  control = nullptr;
  EXPECT_NE(desktop.drop(dropFolder), "(none)") << "what is being dragged outlives its panel";
  desktop.sessions.clear();
}

TEST_F(ArtworkDrag, WithoutAnImageOrADesktopThatTakesItThereIsNoDrag) {
  const auto attempt = [&] {
    drag();
    sendMouse(NSEventType::leftMouseUp, {31, 30});
  };
  desktop.refuses = true;
  attempt();
  platform_.drag = nullptr;
  attempt();
  platform_.drag = &desktop;
  desktop.refuses = false;
  control->setImage(nullptr);
  attempt();
  EXPECT_TRUE(desktop.sessions.empty());
  EXPECT_EQ(target->count, 3) << "the press went on";
}

TEST_F(ArtworkDrag, OffersPNGBeforeTheFileAndMakesWhatIsShownWhenAsked) {
  drag();
  EXPECT_THAT(desktop.sessions.back()->draggingPasteboard().types(),
              ElementsAre(NSPasteboardTypePNG, NSPasteboardTypePromisedFileURL));
  control->setImage(image("next"));
  EXPECT_EQ(desktop.text(NSPasteboardTypePNG), "PNG of next");
  EXPECT_EQ(desktop.text("text/plain"), "(none)");
  EXPECT_EQ(desktop.text(NSPasteboardTypePromisedFileURL), "(none)") << "no folder was named";
  for (const std::string& place :
       {std::string(), dropFolder + "/missing", std::string("/proc/self")}) {
    EXPECT_EQ(desktop.drop(place), "(none)") << place;
  }
  EXPECT_TRUE(files().empty());
  // Named by its local second; one of the same is replaced.
  clock.advance(61);
  const std::string name = "2016-03-05 15-08-10.jpg";
  desktop.drop(dropFolder);
  control->setImage(image("last"));
  EXPECT_EQ(desktop.drop(dropFolder), dropFolder + "/" + name);
  EXPECT_EQ(desktop.text(NSPasteboardTypePromisedFileURL), "(none)") << "the folder was for once";
  EXPECT_THAT(files(), ElementsAre(name));
  EXPECT_EQ(tests::contents(folder.path() / name), "JPEG of last at 1.000000");
  setenv("TZ", "THERE-2", 1);
  desktop.drop(dropFolder);
  EXPECT_THAT(files(), ElementsAre(name, "2016-03-05 16-08-10.jpg"));
  control->setImage(nullptr);
  EXPECT_EQ(desktop.text(NSPasteboardTypePNG), "(none)") << "not the bytes of the time before";
  EXPECT_EQ(desktop.drop(dropFolder), "(none)");
}

}  // namespace
}  // namespace virelune
