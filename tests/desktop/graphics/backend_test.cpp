#include "desktop/graphics/backend.h"
#include "desktop/window/card_style.h"

#include <gtest/gtest.h>

#include <QtCore/QBuffer>
#include <QtGui/QImage>
#include <future>
#include <vector>

#include "desktop/graphics/qt_image.h"
#include "tests/desktop/painting.h"

namespace {

using platform::Appearance;
using platform::Data;
using platform::NSBitmapImageFileType;
using platform::NSMakeRect;
using platform::NSSize;

QByteArray encoded(const char* format, QSize size = {64, 48}) {
  QImage picture(size, QImage::Format_RGB32);
  for (int i = 0; i < size.width() * size.height(); ++i) {
    const int x = i % size.width(), y = i / size.width();
    picture.setPixel(x, y, qRgb(x * 7 % 256, y * 5 % 256, 9));
  }
  QBuffer buffer;
  buffer.open(QIODevice::WriteOnly);
  picture.save(&buffer, format);
  return buffer.data();
}

Data data(const QByteArray& bytes) {
  return Data(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
}

TEST(QtGraphics, ImagesThatAreCutShortAreNone) {
  desktop::QtGraphics graphics(desktop::opaqueLabelColor);
  for (const char* format : {"JPEG", "PNG"}) {
    const QByteArray whole = encoded(format);
    EXPECT_NE(graphics.decode(data(whole)), nullptr) << format;
    EXPECT_NE(graphics.decode(data(whole + QByteArray(100, 'x'))), nullptr) << format;
    for (const qsizetype length :
         {qsizetype{1}, qsizetype{20}, whole.size() / 2, whole.size() - 1}) {
      EXPECT_EQ(graphics.decode(data(whole.left(length))), nullptr) << format << length;
    }
  }
}

TEST(QtGraphics, AbsurdSizesOtherBytesAndAThumbnailsEndMakeNoImage) {
  desktop::QtGraphics graphics(desktop::opaqueLabelColor);
  QByteArray cut = encoded("JPEG");
  cut.insert(2, QByteArrayLiteral("\xFF\xE1\x00\x06\xFF\xD8\xFF\xD9"));  // a thumbnail's end
  EXPECT_NE(graphics.decode(data(cut)), nullptr);
  QByteArray huge = encoded("JPEG");
  const qsizetype frame = huge.indexOf(QByteArrayLiteral("\xFF\xC0"));
  ASSERT_GT(frame, 0);
  huge.replace(frame + 5, 4, QByteArrayLiteral("\x4E\x20\x4E\x20"));  // 20,000 × 20,000
  for (const QByteArray& bytes :
       {cut.left(cut.size() - 40), huge, QByteArray(), QByteArray("\xFF\xD8\xFF"),
        QByteArray("<svg xmlns='http://www.w3.org/2000/svg' width='9' height='9'/>")}) {
    EXPECT_EQ(graphics.decode(data(bytes)), nullptr) << bytes.left(60).toStdString();
  }
}

TEST(QtGraphics, TheSameBytesAreDecodedOnceAlsoOnSeveralThreads) {
  desktop::QtGraphics graphics(desktop::opaqueLabelColor);
  const Data bytes = data(encoded("PNG"));
  std::vector<std::future<std::shared_ptr<platform::NSImage>>> decoding;
  for (int i = 0; i < 4; ++i) {
    decoding.push_back(std::async(std::launch::async, [&] { return graphics.decode(bytes); }));
  }
  const auto image = graphics.decode(bytes);
  ASSERT_NE(image, nullptr);
  for (auto& result : decoding) EXPECT_EQ(result.get(), image);
  for (int i = 0; i < 9; ++i) EXPECT_NE(graphics.decode(data(encoded("PNG"))), image);
}

TEST(QtGraphics, ALargeCoverKeepsItsSizeAndComesOutInFull) {
  desktop::QtGraphics graphics(desktop::opaqueLabelColor);
  const auto image = graphics.decode(data(encoded("JPEG", {3000, 1500})));
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->size(), (NSSize{3000, 1500}));
  for (const auto type : {NSBitmapImageFileType::jpeg, NSBitmapImageFileType::png}) {
    const auto again = graphics.decode(graphics.encode(*image, type, 1.0));
    ASSERT_NE(again, nullptr);
    EXPECT_EQ(again->size(), image->size());
  }
}

TEST(QtGraphics, RenderedImagesHaveTheScaleOfTheDisplay) {
  desktop::QtGraphics graphics(desktop::opaqueLabelColor);
  graphics.setDisplay(2, Appearance::light);
  const auto image = graphics.render({10, 5}, [](platform::Canvas& canvas) {
    canvas.fillRect(NSMakeRect(0, 0, 10, 2.5), platform::NSColor::whiteColor());
  });
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(image->size(), (NSSize{10, 5}));
  const QImage pixels = dynamic_cast<desktop::QtImage&>(*image).pixels();
  EXPECT_EQ(tests::ink(pixels), QRect(0, 5, 20, 5));
}

TEST(DrawingImage, FollowsTheAppearanceAndStaysSharpAtEveryScale) {
  const auto image = desktop::DrawingImage::fromSource(
      "<svg xmlns='http://www.w3.org/2000/svg' width='8' height='8' viewBox='0 0 8 8'>"
      "<rect width='4' height='8' fill='currentColor'/></svg>",
      desktop::opaqueLabelColor);
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(desktop::DrawingImage::fromSource("<svg", desktop::opaqueLabelColor), nullptr);
  const auto draw = [&](platform::Canvas& canvas) {
    canvas.drawImage(*image, NSMakeRect(0, 0, 8, 8), 1);
  };
  for (const double scale : {1.0, 4.0, 1.5}) {
    const QImage light = tests::drawn({8, 8}, draw, Appearance::light, scale);
    const QImage dark = tests::drawn({8, 8}, draw, Appearance::dark, scale);
    const int half = static_cast<int>(4 * scale);
    EXPECT_EQ(tests::ink(light), QRect(0, 0, half, 2 * half));
    EXPECT_EQ(qAlpha(light.pixel(half - 1, 3)), 255);
    EXPECT_LT(light.pixelColor(1, 1).lightness(), 64);
    EXPECT_GT(dark.pixelColor(1, 1).lightness(), 192);
  }
}

}  // namespace
