#include "desktop/qt_canvas.h"

#include <gtest/gtest.h>

#include "tests/desktop/painting.h"

namespace {

using platform::Canvas;
using platform::NSColor;
using platform::NSMakeRect;
using tests::drawn;
using tests::ink;

constexpr NSColor red = NSColor::colorWithRGBA(1, 0, 0, 1);

TEST(QtCanvas, RectanglesCountFromTheLowerLeftWhateverTheNesting) {
  const QImage picture = drawn({20, 20}, [](Canvas& canvas) {
    canvas.save();
    canvas.translate(2, 3);
    canvas.save();
    canvas.translate(4, 5);
    canvas.fillRect(NSMakeRect(0, 0, 6, 2), red);
    canvas.restore();
    canvas.restore();
    canvas.fillRect(NSMakeRect(0, 0, 1, 1), red);
  });
  EXPECT_EQ(picture.pixelColor(0, 19), QColor(Qt::red));
  EXPECT_EQ(ink(picture.copy(1, 0, 19, 19)).translated(1, 0), QRect(6, 10, 6, 2));
}

TEST(QtCanvas, ClipsIntersectAndEndWithTheirSave) {
  const QImage picture = drawn({20, 20}, [](Canvas& canvas) {
    canvas.save();
    canvas.clip(NSMakeRect(0, 0, 10, 20), 0);
    canvas.clip(NSMakeRect(5, 5, 15, 10), 0);
    canvas.fillRect(NSMakeRect(0, 0, 20, 20), red);
    canvas.restore();
  });
  EXPECT_EQ(ink(picture), QRect(5, 5, 5, 10));
}

TEST(QtCanvas, RoundedCornersAreCutSmoothly) {
  const QImage picture = drawn({40, 40}, [](Canvas& canvas) {
    canvas.clip(NSMakeRect(0, 0, 40, 40), 12);
    canvas.fillRect(NSMakeRect(0, 0, 40, 40), red);
  });
  EXPECT_EQ(qAlpha(picture.pixel(0, 0)), 0);
  EXPECT_EQ(qAlpha(picture.pixel(39, 39)), 0);
  EXPECT_EQ(qAlpha(picture.pixel(20, 0)), 255);
  int partly = 0;
  for (int x = 0; x < 12; ++x) {
    const int alpha = qAlpha(picture.pixel(x, 2));
    partly += alpha > 0 && alpha < 255 ? 1 : 0;
  }
  EXPECT_GT(partly, 0);
}

TEST(QtCanvas, OpacitiesMultiplyAndEndWithTheirSave) {
  const QImage picture = drawn({2, 1}, [](Canvas& canvas) {
    canvas.save();
    canvas.multiplyAlpha(0.5);
    canvas.multiplyAlpha(0.5);
    canvas.fillRect(NSMakeRect(0, 0, 1, 1), red);
    canvas.restore();
    canvas.fillRect(NSMakeRect(1, 0, 1, 1), red);
  });
  EXPECT_NEAR(qAlpha(picture.pixel(0, 0)), 64, 1);
  EXPECT_EQ(qAlpha(picture.pixel(1, 0)), 255);
}

TEST(QtCanvas, EmptyAndNegativeRectanglesDrawNothing) {
  const QImage picture = drawn({10, 10}, [](Canvas& canvas) {
    canvas.fillRect(NSMakeRect(8, 2, -5, 5), red);
    canvas.fillRect(NSMakeRect(2, 2, 0, 5), red);
    canvas.fillRoundedRect(NSMakeRect(2, 8, 5, -5), 2, red);
  });
  EXPECT_TRUE(ink(picture).isEmpty());
}

TEST(QtCanvas, LabelColorFollowsTheAppearance) {
  const auto draw = [](Canvas& canvas) {
    canvas.fillRect(NSMakeRect(0, 0, 1, 1), NSColor::labelColor());
  };
  EXPECT_EQ(drawn({1, 1}, draw, platform::Appearance::light).pixelColor(0, 0).lightness(), 0);
  EXPECT_EQ(drawn({1, 1}, draw, platform::Appearance::dark).pixelColor(0, 0).lightness(), 255);
}

}  // namespace
