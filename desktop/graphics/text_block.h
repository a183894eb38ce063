// Text laid out in lines of one width.
#pragma once

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtGui/QFont>
#include <QtGui/QPainter>
#include <QtGui/QTextLayout>
#include <QtGui/QTextOption>
#include <array>

#include "platform/foundation/attributed_string.h"
#include "platform/foundation/geometry.h"

namespace desktop {

/// A text in one font, wrapped at word boundaries, right-to-left where its characters ask for it.
/// Figures (a font with monospaced digits) are narrowed by up to a quarter before they are wrapped
/// or cut, because a number that lacks its end is another number.
/// Lines follow each other at 1.2 times the font's size, whatever fonts stand in for characters
/// that the system font lacks, so that no text moves another.
class TextBlock {
 public:
  /// Of a foreign text of any length, as much is taken as could ever be shown.
  TextBlock(const platform::NSAttributedString& text, double width);

  /// The size of the lines, of which at most one goes beyond the height.
  platform::NSSize measure(double height) const;

  /// Draws the lines that fit the height, the first one always. With truncated the last of them
  /// ends in an ellipsis when there are more.
  void draw(QPainter& painter, QPointF topLeft, double height, bool truncated,
            const QColor& color) const;

 private:
  void measureDigits();
  void narrowFigures();
  /// Lays out at most maximumLines lines of a text; answers the lines' common width.
  double layOut(QTextLayout& layout, int maximumLines) const;
  QList<QTextLayout::FormatRange> digitFormats(const QString& text) const;
  /// As much of a text as fits one line together with an ellipsis.
  QString elided(QString text) const;

  QString text_;
  QFont font_;
  QTextOption option_;
  double width_;
  double lineHeight_;
  double baseline_;  // below a line's top
  bool equalDigits_;
  std::array<double, 10> missing_{};  // how much narrower each digit is than the widest
};

}  // namespace desktop
