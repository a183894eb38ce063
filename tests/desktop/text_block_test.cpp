#include "desktop/text_block.h"

#include <gtest/gtest.h>

#include <QtGui/QFontDatabase>
#include <QtGui/QFontMetricsF>
#include <QtGui/QGuiApplication>
#include <limits>
#include <set>

#include "desktop/qt_graphics.h"
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

NSSize measured(const std::string& text, double width, double height = anyHeight) {
  return desktop::QtGraphics().measure(styled(text, NSTextAlignment::left), {width, height},
                                       truncating);
}

QImage drawnText(const std::string& text, QSize area, unsigned options = truncating,
                 NSTextAlignment alignment = NSTextAlignment::left) {
  return tests::drawn(area, [&](platform::Canvas& canvas) {
    canvas.drawText(styled(text, alignment), NSMakeRect(0, 0, area.width(), area.height()),
                    options);
  });
}

TEST(TextBlock, WrapsBetweenWordsAndInsideOnesThatAreTooLong) {
  const double word = measured("mountain", 1000).width;
  const NSSize wrapped = measured("mountain mountain", word + 4);
  EXPECT_DOUBLE_EQ(wrapped.height, 2 * line);
  EXPECT_LE(wrapped.width, word + 4);
  const NSSize broken = measured(std::string(100, 'm'), 100);
  EXPECT_GT(broken.height, 5 * line);
  EXPECT_LE(broken.width, 100);
}

TEST(TextBlock, LineFeedsBreakLines) {
  EXPECT_DOUBLE_EQ(measured("one\ntwo\nthree", 1000).height, 3 * line);
}

TEST(TextBlock, MeasuresAtMostOneLineBeyondTheHeight) {
  EXPECT_DOUBLE_EQ(measured("a\nb\nc\nd\ne", 1000, 2 * line + 1).height, 3 * line);
}

TEST(TextBlock, CharactersThatTheFontLacksDoNotMakeLinesHigher) {
  EXPECT_DOUBLE_EQ(measured("\xE5\xA4\x9C\xE3\x81\xAE\xE9\x9F\xB3 \xF0\x9F\x8E\xB5", 1000).height,
                   line);
}

TEST(TextBlock, OnlyTextThatIsCutEndsInAnEllipsis) {
  const QSize area(90, 20);
  EXPECT_EQ(drawnText("Short", area), drawnText("Short", area, 0));
  EXPECT_NE(drawnText("Somewhat longer than its line", area),
            drawnText("Somewhat longer than its line", area, 0));
  // A second line that does not fit is announced too, however short the first one is.
  EXPECT_EQ(drawnText("One\nTwo", area), drawnText("One\xE2\x80\xA6", area));
}

TEST(TextBlock, TheEllipsisFollowsAWholeWordOrCharacterWithoutABlank) {
  const QSize area(90, 20);
  const QImage cut = drawnText("Cafe\xCC\x81 \xCC\x81\xCC\x81\xCC\x81 concert in the park", area);
  EXPECT_LE(tests::ink(cut).right(), area.width());
  const double width = measured("A B\xE2\x80\xA6", 1000).width + 1;
  const QSize narrow(static_cast<int>(width), 20);
  EXPECT_EQ(drawnText("A B CCCCCCCC", narrow), drawnText("A B\xE2\x80\xA6", narrow));
}

TEST(TextBlock, TheFirstLineIsDrawnInAnAreaThatIsTooLow) {
  const QImage picture = tests::drawn({100, 40}, [](platform::Canvas& canvas) {
    canvas.drawText(styled("Low", NSTextAlignment::left), NSMakeRect(0, 35, 100, 5), truncating);
  });
  EXPECT_GT(tests::ink(picture).height(), 8);
}

TEST(TextBlock, AlignsToTheSideThatIsAskedForOrWhereTheTextBegins) {
  const std::string hebrew = "\xD7\xA9\xD7\x9C\xD7\x95\xD7\x9D";
  struct Case {
    std::string text;
    NSTextAlignment alignment;
    bool isAtRight;
  };
  for (const Case& c :
       {Case{"abc", NSTextAlignment::natural, false}, Case{hebrew, NSTextAlignment::natural, true},
        Case{hebrew, NSTextAlignment::left, false}, Case{hebrew, NSTextAlignment::right, true},
        Case{"abc", NSTextAlignment::right, true}}) {
    const QRect inked = tests::ink(drawnText(c.text, {200, 20}, truncating, c.alignment));
    EXPECT_EQ(inked.left() > 100, c.isAtRight) << c.text << static_cast<int>(c.alignment);
    EXPECT_EQ(inked.right() < 100, !c.isAtRight) << c.text << static_cast<int>(c.alignment);
  }
  const QRect centred =
      tests::ink(drawnText("abc", {200, 20}, truncating, NSTextAlignment::center));
  EXPECT_NEAR(centred.center().x(), 100, 2);
}

TEST(TextBlock, OfAMegabyteOnlyWhatCanBeShownIsLaidOut) {
  constexpr std::size_t megabyte = 1 << 20;
  for (const std::string& piece : {std::string("x"), std::string("word "), std::string("\xCC\x81"),
                                   std::string("\xD7\xA9"), std::string("\n")}) {
    std::string text;
    while (text.size() < megabyte) text += piece;
    const NSSize whole = measured(text, 250);
    EXPECT_EQ(whole, measured(text.substr(0, 4096 - 4096 % piece.size()), 250));
    EXPECT_EQ(drawnText(text, {250, 20}).size(), QSize(250, 20));
  }
}

TEST(TextBlock, ControlCharactersAreBlanks) {
  const QSize area(200, 20);
  EXPECT_EQ(drawnText("a\x01"
                      "b\tc\x7F",
                      area),
            drawnText("a b c ", area));
}

TEST(TextBlock, AllDigitsTakeTheSameRoomAlsoWhereTheFontsDoNot) {
  const auto widthOf = [](const std::string& text, bool monospaced) {
    return desktop::QtGraphics()
        .measure(styled(text, NSTextAlignment::left, monospaced), {1000, anyHeight}, truncating)
        .width;
  };
  const QFont usual = QGuiApplication::font();
  int uneven = 0;
  for (const QString& family : QFontDatabase::families()) {
    QGuiApplication::setFont(QFont(family));
    std::set<double> own;
    std::set<double> equal;
    for (char digit = '0'; digit <= '9'; ++digit) {
      const std::string digits = std::string(20, digit) + 'x';  // its end is the same for all
      own.insert(widthOf(digits, false));
      equal.insert(widthOf(digits, true));
    }
    uneven += own.size() > 1 ? 1 : 0;
    EXPECT_LE(*equal.rbegin() - *equal.begin(), 1) << family.toStdString();
  }
  QGuiApplication::setFont(usual);
  if (uneven == 0) GTEST_SKIP() << "no installed font has digits of different widths";
}

TEST(TextBlock, FiguresGiveWayBeforeTheyAreCutAndOnlyFigures) {
  const auto heightOf = [](const std::string& text, double width, bool monospaced) {
    return desktop::QtGraphics()
        .measure(styled(text, NSTextAlignment::left, monospaced), {width, anyHeight}, truncating)
        .height;
  };
  const std::string time = "01:00:02 | 1:12:40";
  const double whole = measured(time, 1000).width;
  EXPECT_DOUBLE_EQ(heightOf(time, 0.8 * whole, true), line);
  EXPECT_DOUBLE_EQ(heightOf(time, 0.8 * whole, false), 2 * line);
  EXPECT_GT(heightOf(time, 0.4 * whole, true), line);
}

}  // namespace
