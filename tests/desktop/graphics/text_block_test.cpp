#include "desktop/graphics/text_block.h"
#include "desktop/window/card_style.h"

#include <gtest/gtest.h>

#include <QtGui/QFontDatabase>
#include <QtGui/QGuiApplication>
#include <limits>
#include <set>

#include "desktop/graphics/backend.h"
#include "tests/desktop/painting.h"

namespace {

using platform::NSAttributedString;
using platform::NSFont;
using platform::NSMakeRect;
using platform::NSSize;
using platform::NSTextAlignment;

constexpr double anyHeight = std::numeric_limits<double>::max();
constexpr unsigned truncating = platform::NSStringDrawingUsesLineFragmentOrigin |
                                platform::NSStringDrawingTruncatesLastVisibleLine;
constexpr double size = 16;
constexpr double line = size * 1.2;

NSAttributedString styled(const std::string& text, NSTextAlignment alignment,
                          bool monospacedDigits = false) {
  NSAttributedString result{text, {}};
  NSFont font;
  font.size = size;
  font.monospacedDigits = monospacedDigits;
  result.attributes[platform::NSFontAttributeName] = font;
  result.attributes[platform::NSParagraphStyleAttributeName] =
      platform::NSParagraphStyle{alignment};
  return result;
}

NSSize measured(const std::string& text, double width, double height = anyHeight,
                bool monospacedDigits = false) {
  return desktop::QtGraphics(desktop::opaqueLabelColor)
      .measure(styled(text, NSTextAlignment::left, monospacedDigits), {width, height}, truncating);
}

QImage drawnText(const std::string& text, QSize area, unsigned options = truncating,
                 NSTextAlignment alignment = NSTextAlignment::left) {
  return tests::drawn(area, [&](platform::Canvas& canvas) {
    canvas.drawText(styled(text, alignment), NSMakeRect(0, 0, area.width(), area.height()),
                    options);
  });
}

TEST(TextBlock, WrapsBetweenWordsAndInsideOnesThatAreTooLongAndAtLineFeeds) {
  const double word = measured("mountain", 1000).width;
  const NSSize wrapped = measured("mountain mountain", word + 4);
  EXPECT_DOUBLE_EQ(wrapped.height, 2 * line);
  EXPECT_LE(wrapped.width, word + 4);
  const NSSize broken = measured(std::string(100, 'm'), 100);
  EXPECT_GT(broken.height, 5 * line);
  EXPECT_LE(broken.width, 100);
  EXPECT_DOUBLE_EQ(measured("one\ntwo\nthree", 1000).height, 3 * line);
  EXPECT_DOUBLE_EQ(measured("a\nb\nc\nd\ne", 1000, 2 * line + 1).height, 3 * line);
  EXPECT_DOUBLE_EQ(measured("夜の音 🎵", 1000).height, line) << "another font's characters";
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

TEST(TextBlock, TheFirstLineIsDrawnInAnAreaThatIsTooLow) {
  const QImage picture = tests::drawn({100, 40}, [](platform::Canvas& canvas) {
    canvas.drawText(styled("Low", NSTextAlignment::left), NSMakeRect(0, 35, 100, 5), truncating);
  });
  EXPECT_GT(tests::ink(picture).height(), 8);
}

TEST(TextBlock, AlignsToTheSideThatIsAskedForOrWhereTheTextBegins) {
  const std::string hebrew = "שלום";
  const auto inked = [](const std::string& text, NSTextAlignment alignment) {
    return tests::ink(drawnText(text, {200, 20}, truncating, alignment));
  };
  EXPECT_LT(inked("abc", NSTextAlignment::natural).right(), 100);
  EXPECT_GT(inked(hebrew, NSTextAlignment::natural).left(), 100);
  EXPECT_LT(inked(hebrew, NSTextAlignment::left).right(), 100);
  EXPECT_GT(inked(hebrew, NSTextAlignment::right).left(), 100);
  EXPECT_GT(inked("abc", NSTextAlignment::right).left(), 100);
  EXPECT_NEAR(inked("abc", NSTextAlignment::center).center().x(), 100, 2);
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

TEST(TextBlock, AllDigitsTakeTheSameRoomAlsoWhereTheFontsDoNot) {
  const QFont usual = QGuiApplication::font();
  int uneven = 0;
  for (const QString& family : QFontDatabase::families()) {
    QGuiApplication::setFont(QFont(family));
    std::set<double> own;
    std::set<double> equal;
    for (char digit = '0'; digit <= '9'; ++digit) {
      const std::string digits = std::string(20, digit) + 'x';  // its end is the same for all
      own.insert(measured(digits, 1000).width);
      equal.insert(measured(digits, 1000, anyHeight, true).width);
    }
    uneven += own.size() > 1 ? 1 : 0;
    EXPECT_LE(*equal.rbegin() - *equal.begin(), 1) << family.toStdString();
  }
  QGuiApplication::setFont(usual);
  if (uneven == 0) GTEST_SKIP() << "no installed font has digits of different widths";
}

TEST(TextBlock, FiguresGiveWayBeforeTheyAreCutAndOnlyFigures) {
  const std::string time = "01:00:02 | 1:12:40";
  const double whole = measured(time, 1000).width;
  EXPECT_DOUBLE_EQ(measured(time, 0.8 * whole, anyHeight, true).height, line);
  EXPECT_DOUBLE_EQ(measured(time, 0.8 * whole).height, 2 * line);
  EXPECT_GT(measured(time, 0.4 * whole, anyHeight, true).height, line);
}

}  // namespace
