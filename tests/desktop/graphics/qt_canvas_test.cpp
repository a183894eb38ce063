#include "desktop/graphics/qt_canvas.h"

#include <gtest/gtest.h>

#include "tests/desktop/painting.h"

namespace {

using platform::Canvas;
using platform::NSColor;
using platform::NSMakeRect;
using tests::drawn;
using tests::ink;

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

TEST(QtCanvas, RoundedCornersAreCutSmoothly) {
  const QImage picture = drawn({40, 40}, [](Canvas& canvas) {
    canvas.clip(NSMakeRect(0, 0, 40, 40), 12);
    canvas.fillRect(NSMakeRect(0, 0, 40, 40), red);
  });
  int partly = 0;
  for (int x = 0; x < 12; ++x) {
    const int alpha = qAlpha(picture.pixel(x, 2));
    partly += alpha > 0 && alpha < 255 ? 1 : 0;
  }
  EXPECT_GT(partly, 0);
  EXPECT_EQ(qAlpha(picture.pixel(39, 39)), 0);
  EXPECT_EQ(qAlpha(picture.pixel(20, 0)), 255);
}

}  // namespace
