#include "desktop/graphics/backend.h"

#include <gtest/gtest.h>
#include <QtCore/QBuffer>
#include <QtGui/QImage>
#include <functional>
#include <limits>

#include "desktop/graphics/qt_canvas.h"
#include "desktop/graphics/text_block.h"
#include "desktop/window/card_style.h"

namespace {

using namespace platform;

/// What is drawn on a canvas of this size (points), on nothing.
QImage drawn(QSize size, const std::function<void(Canvas&)>& draw,
             Appearance appearance = Appearance::light, double scale = 1) {
  QImage picture(size * scale, QImage::Format_ARGB32_Premultiplied);
  picture.fill(Qt::transparent);
  picture.setDevicePixelRatio(scale);
  {
    QPainter painter(&picture);
    desktop::QtCanvas canvas(painter, size.height(), appearance);
    draw(canvas);
  }
  picture.setDevicePixelRatio(1);
  return picture;
}

/// The rectangle of the pixels that anything was drawn on; empty when there are none.
QRect ink(const QImage& picture) {
  QRect inked;
  for (int y = 0; y < picture.height(); ++y) {
    for (int x = 0; x < picture.width(); ++x) {
      if (qAlpha(picture.pixel(x, y)) > 0) inked |= QRect(x, y, 1, 1);
    }
  }
  return inked;
}

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

TEST(QtGraphics, CutOrAbsurdOrOtherBytesMakeNoImage) {
  desktop::QtGraphics graphics(desktop::opaqueLabelColor);
  QByteArray jpeg = encoded("JPEG");
  jpeg.insert(2, QByteArrayLiteral("\xFF\xE1\x00\x06\xFF\xD8\xFF\xD9"));  // a thumbnail's end
  for (const QByteArray& whole : {jpeg, encoded("PNG")}) {
    EXPECT_NE(graphics.decode(data(whole + QByteArray(100, 'x'))), nullptr);
    for (const qsizetype length :
         {qsizetype{0}, qsizetype{1}, qsizetype{20}, whole.size() / 2, whole.size() - 1}) {
      EXPECT_EQ(graphics.decode(data(whole.left(length))), nullptr) << length;
    }
  }
  const qsizetype frame = jpeg.indexOf(QByteArrayLiteral("\xFF\xC0"));
  ASSERT_GT(frame, 0);
  const auto withFrame = [&](const char* code, const char* size) {
    return data(QByteArray(jpeg).replace(frame, 2, code).replace(frame + 5, 4, size));
  };
  // Row after row 20,000 × 20,000 pixels take no more room than what is shown of them.
  const auto large = graphics.decode(withFrame("\xFF\xC0", "\x4E\x20\x4E\x20"));
  ASSERT_NE(large, nullptr);
  EXPECT_EQ(large->size(), (NSSize{20'000, 20'000}));
  EXPECT_EQ(graphics.decode(withFrame("\xFF\xC0", "\x4E\x21\x4E\x20")), nullptr);
  EXPECT_EQ(graphics.decode(withFrame("\xFF\xC2", "\x11\x79\x11\x79")), nullptr) << "4,473 × 4,473";
  EXPECT_EQ(graphics.decode(data("<svg xmlns='http://www.w3.org/2000/svg' width='9'/>")), nullptr);
}

TEST(DrawingImage, FollowsTheAppearanceAndStaysSharpAtEveryScale) {
  const auto image = desktop::DrawingImage::fromSource(
      "<svg xmlns='http://www.w3.org/2000/svg' width='8' height='8' viewBox='0 0 8 8'>"
      "<rect width='4' height='8' fill='currentColor'/></svg>",
      desktop::opaqueLabelColor);
  ASSERT_NE(image, nullptr);
  EXPECT_EQ(desktop::DrawingImage::fromSource("<svg", desktop::opaqueLabelColor), nullptr);
  const auto draw = [&](Canvas& canvas) { canvas.drawImage(*image, NSMakeRect(0, 0, 8, 8), 1); };
  for (const double scale : {1.0, 4.0, 1.5}) {
    const QImage light = drawn({8, 8}, draw, Appearance::light, scale);
    const QImage dark = drawn({8, 8}, draw, Appearance::dark, scale);
    const int half = static_cast<int>(4 * scale);
    EXPECT_EQ(ink(light), QRect(0, 0, half, 2 * half));
    EXPECT_EQ(qAlpha(light.pixel(half - 1, 3)), 255);
    EXPECT_LT(light.pixelColor(1, 1).lightness(), 64);
    EXPECT_GT(dark.pixelColor(1, 1).lightness(), 192);
  }
}

constexpr NSColor red = NSColor::colorWithRGBA(1, 0, 0, 1);

TEST(QtCanvas, CountsFromTheLowerLeftAndClipsAndOpacitiesEndWithTheirSave) {
  const QImage picture = drawn({20, 20}, [](Canvas& canvas) {
    canvas.save();
    canvas.translate(2, 3);
    canvas.save();
    canvas.translate(4, 5);
    canvas.clip(NSMakeRect(0, 0, 6, 20), 0);
    canvas.clip(NSMakeRect(-5, 0, 20, 2), 0);
    canvas.multiplyAlpha(0.5);
    canvas.multiplyAlpha(0.5);
    canvas.fillRect(NSMakeRect(-9, -9, 40, 40), red);
    canvas.restore();
    canvas.restore();
    canvas.fillRect(NSMakeRect(0, 0, 1, 1), red);
    for (const auto& empty : {NSMakeRect(18, 2, -5, 5), NSMakeRect(12, 2, 0, 5)}) {
      canvas.fillRect(empty, red);
      canvas.fillRoundedRect(empty, 2, red);
    }
  });
  EXPECT_EQ(picture.pixelColor(0, 19), QColor(Qt::red));
  EXPECT_EQ(ink(picture.copy(1, 0, 19, 19)).translated(1, 0), QRect(6, 10, 6, 2));
  EXPECT_NEAR(qAlpha(picture.pixel(7, 11)), 64, 1);
}

constexpr double anyHeight = std::numeric_limits<double>::max();
constexpr unsigned truncating =
    NSStringDrawingUsesLineFragmentOrigin | NSStringDrawingTruncatesLastVisibleLine;
constexpr double size = 16;
constexpr double line = size * 1.2;

NSAttributedString styled(const std::string& text, NSTextAlignment alignment) {
  NSAttributedString result{text, {}};
  NSFont font;
  font.size = size;
  result.attributes[NSFontAttributeName] = font;
  result.attributes[NSParagraphStyleAttributeName] = NSParagraphStyle{alignment};
  return result;
}

NSSize measured(const std::string& text, double width, double height = anyHeight) {
  return desktop::QtGraphics(desktop::opaqueLabelColor)
      .measure(styled(text, NSTextAlignment::left), {width, height}, truncating);
}

QImage drawnText(const std::string& text, QSize area, unsigned options = truncating,
                 NSTextAlignment alignment = NSTextAlignment::left) {
  return drawn(area, [&](Canvas& canvas) {
    canvas.drawText(styled(text, alignment), NSMakeRect(0, 0, area.width(), area.height()),
                    options);
  });
}

TEST(TextBlock, WrapsBetweenWordsAndInsideOnesThatAreTooLongAndAtLineFeeds) {
  const double word = measured("mountain", 1000).width;
  const NSSize wrapped = measured("mountain mountain", word + 4);
  EXPECT_DOUBLE_EQ(wrapped.height, 2 * line);
  EXPECT_LE(wrapped.width, word + 4);
  EXPECT_GT(measured(std::string(100, 'm'), 100).height, 5 * line);
  EXPECT_DOUBLE_EQ(measured("a\nb\nc\nd\ne", 1000, 2 * line + 1).height, 3 * line);
  EXPECT_DOUBLE_EQ(measured("夜の音 🎵", 1000).height, line) << "another font's characters";
  const QImage low = drawn({100, 40}, [](Canvas& canvas) {
    canvas.drawText(styled("Low", NSTextAlignment::left), NSMakeRect(0, 35, 100, 5), truncating);
  });
  EXPECT_GT(ink(low).height(), 8) << "the first line is drawn in an area that is too low";
}

TEST(TextBlock, OnlyTextThatIsCutEndsInAnEllipsisAfterAWholeWordOrCharacter) {
  const QSize area(90, 20);
  EXPECT_EQ(drawnText("Short", area), drawnText("Short", area, 0));
  EXPECT_NE(drawnText("Somewhat longer than its line", area),
            drawnText("Somewhat longer than its line", area, 0));
  // A second line that does not fit is announced too, however short the first one is.
  EXPECT_EQ(drawnText("One\nTwo", area), drawnText("One…", area));
  const QSize narrow(static_cast<int>(measured("A B…", 1000).width + 1), 20);
  EXPECT_EQ(drawnText("A B CCCCCCCC", narrow), drawnText("A B…", narrow));
  EXPECT_EQ(drawnText("a\x01z\tc\x7F", area), drawnText("a z c ", area)) << "control characters";
}

TEST(TextBlock, AlignsToTheSideThatIsAskedForOrWhereTheTextBegins) {
  using enum NSTextAlignment;
  const std::tuple<const char*, NSTextAlignment, int> cases[] = {{"abc", natural, -1},
                                                                 {"שלום", natural, 1},
                                                                 {"שלום", left, -1},
                                                                 {"abc", right, 1},
                                                                 {"abc", center, 0}};
  for (const auto& [text, alignment, side] : cases) {
    const QRect inked = ink(drawnText(text, {200, 20}, truncating, alignment));
    EXPECT_EQ((inked.left() > 100) - (inked.right() < 100), side) << text;
  }
}

TEST(TextBlock, OfAMegabyteOnlyWhatCanBeShownIsLaidOut) {
  constexpr std::size_t megabyte = 1 << 20;
  for (const std::string piece : {"x", "word ", "\xCC\x81", "\xD7\xA9", "\n"}) {
    std::string text;
    while (text.size() < megabyte) text += piece;
    const NSSize whole = measured(text, 250);
    EXPECT_EQ(whole, measured(text.substr(0, 4096 - 4096 % piece.size()), 250));
    EXPECT_EQ(drawnText(text, {250, 20}).size(), QSize(250, 20));
  }
}

}  // namespace
