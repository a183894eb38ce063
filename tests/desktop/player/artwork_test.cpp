#include "desktop/player/artwork.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <fstream>

#include "tests/support/temporary_folder.h"
#include "tests/support/widget_fixture.h"

namespace desktop {
namespace {

class PlayerArtworkTest : public tests::WidgetFixture {
 protected:
  QString file(const char* name, const std::string& content) const {
    const auto path = folder_.path() / name;
    std::ofstream(path, std::ios::binary) << content;
    return QString::fromStdString(path.string());
  }
  std::string bytes(const QString& address) { return std::string(artwork.bytes(address).view()); }

  const tests::TemporaryFolder folder_;
  int arrivals = 0;
  PlayerArtwork artwork{[this] { ++arrivals; }};
};

TEST_F(PlayerArtworkTest, FilesAreReadOnceUntilTheyChangeAndDataIsDecoded) {
  const QString path = file("a cover.png", "one");
  const QString address = "file://" + path;
  EXPECT_TRUE(artwork.exists(address));
  EXPECT_EQ(bytes(address), "one");
  EXPECT_TRUE(artwork.bytes(address).isIdenticalTo(artwork.bytes(address)));
  EXPECT_EQ(bytes(QString(address).replace(QLatin1Char(' '), "%20")), "one");
  EXPECT_EQ(bytes(path), "one");
  file("a cover.png", "two!");
  EXPECT_EQ(bytes(address), "two!");
  std::filesystem::remove(path.toStdString());
  EXPECT_FALSE(artwork.exists(address));
  EXPECT_EQ(bytes("data:image/png;base64,aGVs%62G8%3D"), "hello");
  EXPECT_EQ(bytes("data:image/png;base64"), "");
}

TEST_F(PlayerArtworkTest, WhatIsNoRegularFileOfThisMachineIsNoCover) {
  const std::string pipe = (folder_.path() / "pipe").string();
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  const QString big = file("big", "");
  std::filesystem::resize_file(big.toStdString(), 33 * 1024 * 1024);
  const QString addresses[] = {"",
                               pipe.c_str(),
                               big,
                               "file:///dev/zero",
                               "file://elsewhere/cover.png",
                               "ftp://host/cover.png",
                               folder_.path().c_str(),
                               "relative.png"};
  for (const QString& address : addresses) {
    EXPECT_FALSE(artwork.exists(address)) << address.toStdString();
    EXPECT_EQ(bytes(address), "");
  }
}

TEST_F(PlayerArtworkTest, WebCoversAreFetchedOnceAndMissingOnesAgainAfterAWhile) {
  const QString address = "https://covers.example/1 x.jpg";
  EXPECT_TRUE(artwork.exists(address));  // on its way: no need to look elsewhere
  EXPECT_EQ(bytes(address), "");
  EXPECT_EQ(http.last().request.url, "https://covers.example/1%20x.jpg");
  http.answer(0, "<html>no such file</html>", 404);
  clock.settle();
  EXPECT_EQ(arrivals, 1);
  EXPECT_FALSE(artwork.exists(address));
  EXPECT_EQ(http.count(), 1U);
  clock.advance(61);
  EXPECT_TRUE(artwork.exists(address));
  ASSERT_EQ(http.count(), 2U);
  http.answer(1, "cover");
  EXPECT_EQ(arrivals, 1);
  clock.settle();
  EXPECT_EQ(arrivals, 2);
  EXPECT_EQ(bytes(address), "cover");
  EXPECT_EQ(http.count(), 2U);
}

TEST_F(PlayerArtworkTest, CoversOutOfUseAreForgottenAndTheirTransfersEnd) {
  const auto address = [](int i) { return QStringLiteral("http://covers.example/%1").arg(i); };
  for (int i = 0; i < 6; ++i) artwork.exists(address(i));
  EXPECT_TRUE(http.at(0).cancelled);
  EXPECT_EQ(http.inFlight(), 4U);
  // The first one is asked for again before the end of its first transfer is known.
  EXPECT_TRUE(artwork.exists(address(0)));
  clock.settle();
  EXPECT_TRUE(artwork.exists(address(0)));
  http.answer(http.lastIndex(), "late");
  clock.settle();
  EXPECT_EQ(bytes(address(0)), "late");
}

}  // namespace
}  // namespace desktop
