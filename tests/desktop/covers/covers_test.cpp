#include "desktop/covers/covers.h"

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <fstream>

#include "tests/support/temporary_folder.h"
#include "tests/support/widget_fixture.h"

namespace desktop {
namespace {

class CoversTest : public tests::WidgetFixture {
 protected:
  /// A picture, which is its name, padded so that the disk sees a larger file.
  std::string file(const std::string& name, const std::string& picture) const {
    const auto path = folder_.path() / name;
    std::filesystem::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << "image:" << picture;
    return path.string();
  }
  std::string track(const std::string& name) const { return (folder_.path() / name).string(); }
  static CoverWanted at(const std::string& address) {
    return {.address = QString::fromStdString(address)};
  }
  void settle() {
    workers.runAll();
    clock.settle();
  }
  /// What is shown, without what tells that it is a picture.
  std::string shown(const CoverWanted& wanted) {
    const std::string bytes(covers.bytes(wanted).view());
    return bytes.empty() ? bytes : bytes.substr(6);
  }
  std::string found(const CoverWanted& wanted) {
    covers.exists(wanted);
    settle();
    return shown(wanted);
  }

  const tests::TemporaryFolder folder_;
  int arrivals = 0;
  Covers covers{&workers, [this] { ++arrivals; }};
};

TEST_F(CoversTest, FilesAreReadAsideAndAgainAfterAWhileAndDataIsDecoded) {
  const std::string path = file("a cover.png", "one");
  const CoverWanted wanted = at("file://" + path);
  EXPECT_TRUE(covers.exists(wanted)) << "on its way: no need to look elsewhere";
  EXPECT_EQ(shown(wanted), "") << "not read by who asks";
  EXPECT_EQ(workers.count(), 1U);
  settle();
  EXPECT_EQ(arrivals, 1);
  EXPECT_EQ(shown(wanted), "one");
  const auto before = covers.bytes(wanted);
  clock.advance(3);
  EXPECT_EQ(found(wanted), "one");
  EXPECT_TRUE(covers.bytes(wanted).isIdenticalTo(before));
  EXPECT_EQ(found(at(path)), "one");
  EXPECT_TRUE(covers.bytes(at(path)).isIdenticalTo(before)) << "one picture, decoded once";
  EXPECT_EQ(found(at("file://" + path.substr(0, path.size() - 10) + "%20cover.png")), "one");
  EXPECT_EQ(arrivals, 3);
  file("a cover.png", "two");
  EXPECT_EQ(found(wanted), "one") << "not asked for again at once";
  clock.advance(3);
  EXPECT_EQ(found(wanted), "two");
  EXPECT_EQ(arrivals, 4);
  std::filesystem::remove(path);
  clock.advance(3);
  EXPECT_EQ(found(wanted), "");
  EXPECT_FALSE(covers.exists(wanted));
  EXPECT_EQ(found(at("data:image/png;base64,aW1hZ2%55%36aGVsbG8%3D")), "hello");
  EXPECT_EQ(found(at("data:image/png;base64")), "");
}

TEST_F(CoversTest, WhatIsNoPictureInARegularFileOfThisMachineIsNoCover) {
  const std::string pipe = track("pipe");
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const std::string big = file("big", "big");
  std::filesystem::resize_file(big, 33 * 1024 * 1024);
  const std::string other = track("text");
  std::ofstream(other) << "text";
  for (const std::string& address :
       {std::string(), pipe, big, other, std::string("file:///dev/zero"),
        std::string("file://elsewhere/cover.png"), std::string("ftp://host/cover.png"),
        folder_.path().string(), std::string("relative.png")}) {
    EXPECT_EQ(found(at(address)), "") << address;
    EXPECT_FALSE(covers.exists(at(address))) << address;
  }
  EXPECT_EQ(found({.path = pipe}), "");
}

TEST_F(CoversTest, WebCoversAreFetchedOnceAndMissingOnesAgainAfterAWhile) {
  const CoverWanted wanted = at("https://covers.example/1 x.jpg");
  EXPECT_TRUE(covers.exists(wanted));
  EXPECT_EQ(http.last().request.url, "https://covers.example/1%20x.jpg");
  http.answer(0, "<html>no such file</html>", 404);
  clock.settle();
  EXPECT_EQ(found(wanted), "");
  EXPECT_EQ(arrivals, 1);
  EXPECT_FALSE(covers.exists(wanted));
  EXPECT_EQ(http.count(), 1U);
  clock.advance(61);
  EXPECT_FALSE(covers.exists(wanted)) << "the store has been asked meanwhile";
  ASSERT_EQ(http.count(), 2U);
  http.answer(1, "image:cover");
  clock.settle();
  settle();
  EXPECT_EQ(arrivals, 2);
  clock.advance(999);
  EXPECT_EQ(found(wanted), "cover");
  EXPECT_EQ(http.count(), 2U);
}

TEST_F(CoversTest, TheFoldersPicturesFollowThePlayersTheLargestThatIsOneFirst) {
  const std::string folder = "Artist/A: Title?/CD 2/";
  const CoverWanted wanted{.path = track(folder + "1.flac"), .album = "A: Title?"};
  EXPECT_EQ(found(wanted), "");
  const auto next = [&] {
    clock.advance(3);
    return found(wanted);
  };
  file("Artist/A: Title?/front.webp", "of all the discs, and the largest of them");
  EXPECT_EQ(next(), "of all the discs, and the largest of them");
  file(folder + "back.jpg", "the other side, which is no cover at all");
  file(folder + "FOLDER.JPEG", "of the disc");
  EXPECT_EQ(next(), "of the disc");
  file(folder + "a title.PNG", "as the album is called");
  EXPECT_EQ(next(), "as the album is called");
  std::ofstream(track(folder + "cover.jpg")) << "larger than all of them, but not a picture";
  EXPECT_EQ(next(), "as the album is called");
  EXPECT_EQ(found({.address = QString::fromStdString(file("told.png", "told")),
                   .path = wanted.path,
                   .album = wanted.album}),
            "told");
  EXPECT_EQ(found({.path = track("Artist/CDs of others/1.mp3")}), "");
}

TEST_F(CoversTest, OnePictureForDifferentAlbumsStandsInForNone) {
  const auto from = [&](const char* name, const char* album) {
    return CoverWanted{.address = QString::fromStdString(file(name, "no cover")),
                       .path = track(std::string(album) + "/1.mp3"),
                       .album = album};
  };
  file("B/cover.jpg", "of B");
  EXPECT_EQ(found(from("1.png", "A")), "no cover") << "nobody can know";
  EXPECT_EQ(found(from("2.png", "A")), "no cover") << "an album is allowed to have one";
  EXPECT_EQ(found(from("3.png", "")), "no cover");
  EXPECT_EQ(found(from("4.png", "B")), "of B");
  clock.advance(3);
  EXPECT_EQ(found(from("1.png", "A")), "");
}

TEST_F(CoversTest, TheNewestTrackWinsAndAnAlbumKeepsItsCoverMeanwhile) {
  file("A/cover.jpg", "of A");
  const CoverWanted first{.path = track("A/1.mp3"), .album = "A"};
  const CoverWanted second{.path = track("A/2.mp3"), .album = "A"};
  const CoverWanted other{.path = track("B/1.mp3"), .album = "B"};
  EXPECT_EQ(found(first), "of A");
  EXPECT_EQ(shown(second), "of A");
  EXPECT_EQ(shown(other), "");
  const CoverWanted slow = at("http://covers.example/slow");
  covers.exists(slow);
  EXPECT_EQ(found(second), "of A");
  http.answer(0, "image:late");
  settle();
  settle();
  EXPECT_EQ(shown(second), "of A");
  EXPECT_EQ(shown(slow), "late");
}

TEST_F(CoversTest, WhatIsOutOfUseIsForgottenWithItsTransferAndLateAnswersFindNobody) {
  const auto address = [](int i) { return at("http://covers.example/" + std::to_string(i)); };
  for (int i = 0; i < 18; ++i) covers.exists(address(i));
  EXPECT_TRUE(http.at(0).cancelled);
  EXPECT_EQ(http.inFlight(), 16U);
  // The first one is asked for again before the end of its first transfer is known.
  EXPECT_TRUE(covers.exists(address(0)));
  clock.settle();
  EXPECT_TRUE(covers.exists(address(0)));
  http.answer(http.lastIndex(), "image:late");
  clock.settle();
  EXPECT_EQ(found(address(0)), "late");

  const std::string large(5 * 1024 * 1024, 'x');
  const CoverWanted one = at(file("1.png", "1" + large)), two = at(file("2.png", "2" + large));
  EXPECT_EQ(found(one)[0], '1');
  EXPECT_EQ(found(two)[0], '2');
  EXPECT_EQ(shown(one), "") << "more than is kept";
  {
    Covers gone(&workers, [] { ADD_FAILURE() << "told of a cover"; });
    gone.exists(one);
  }
  settle();
}

}  // namespace
}  // namespace desktop
