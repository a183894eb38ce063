#include "desktop/graphics/text_block.h"

#include <QtGui/QFontMetricsF>
#include <QtGui/QGuiApplication>
#include <algorithm>
#include <cmath>
#include <limits>

#include "platform/foundation/text.h"

namespace desktop {

namespace {

// No label shows more than a few hundred characters.
constexpr std::size_t maximumBytes = 4096;
constexpr double lineHeightOfSize = 1.2;
constexpr QChar ellipsis(0x2026);
constexpr int narrowest = 75;  // per cent of a font's own width
constexpr double anyWidth =
    std::numeric_limits<int>::max() / 256.0;  // the layout's numbers end there

template <class T>
T attribute(const platform::Dictionary& attributes, const char* key, T otherwise) {
  const auto entry = attributes.find(key);
  return entry != attributes.end() ? entry->second.as<T>().value_or(otherwise) : otherwise;
}

QFont::Weight weight(platform::NSFontWeight weight) {
  switch (weight) {
    case platform::NSFontWeight::medium:
      return QFont::Medium;
    case platform::NSFontWeight::bold:
      return QFont::Bold;
    case platform::NSFontWeight::regular:
      break;
  }
  return QFont::Normal;
}

QFont systemFont(const platform::NSFont& wanted) {
  QFont font = QGuiApplication::font();
  font.setPixelSize(std::max(1, qRound(wanted.size)));
  font.setWeight(weight(wanted.weight));
  if (wanted.monospacedDigits) font.setKerning(false);
  return font;
}

/// Natural is the side where the text's own direction begins.
Qt::Alignment alignment(platform::NSTextAlignment alignment, bool isRightToLeft) {
  switch (alignment) {
    case platform::NSTextAlignment::left:
      return Qt::AlignLeft;
    case platform::NSTextAlignment::right:
      return Qt::AlignRight;
    case platform::NSTextAlignment::center:
      return Qt::AlignHCenter;
    case platform::NSTextAlignment::justified:
      return Qt::AlignJustify;
    case platform::NSTextAlignment::natural:
      break;
  }
  return isRightToLeft ? Qt::AlignRight : Qt::AlignLeft;
}

QString layoutText(const std::string& text) {
  const std::string shown = platform::displayableText(text, maximumBytes);
  QString result = QString::fromUtf8(shown.data(), static_cast<qsizetype>(shown.size()));
  result.replace(QChar::LineFeed, QChar::LineSeparator);
  result.replace(QChar::ParagraphSeparator, QChar::LineSeparator);
  return result;
}

}  // namespace

TextBlock::TextBlock(const platform::NSAttributedString& text, double width)
    : text_(layoutText(text.text)), width_(std::max(0.0, width)) {
  const auto font = attribute(text.attributes, platform::NSFontAttributeName, platform::NSFont());
  const auto style = attribute(text.attributes, platform::NSParagraphStyleAttributeName,
                               platform::NSParagraphStyle());
  font_ = systemFont(font);
  equalDigits_ = font.monospacedDigits;
  option_.setAlignment(alignment(style.alignment, text_.isRightToLeft()));
  option_.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  option_.setTextDirection(Qt::LayoutDirectionAuto);

  if (equalDigits_) {
    measureDigits();
    narrowFigures();
  }
  const QFontMetricsF metrics(font_);
  lineHeight_ = font.size * lineHeightOfSize;
  baseline_ = (lineHeight_ - metrics.ascent() - metrics.descent()) / 2 + metrics.ascent();
}

void TextBlock::measureDigits() {
  const QFontMetricsF metrics(font_);
  for (std::size_t digit = 0; digit < missing_.size(); ++digit) {
    missing_[digit] = -metrics.horizontalAdvance(QChar('0' + static_cast<int>(digit)));
  }
  const double widest = *std::min_element(missing_.begin(), missing_.end());
  for (double& missing : missing_) missing -= widest;
}

void TextBlock::narrowFigures() {
  TextBlock line = *this;
  line.width_ = anyWidth;
  const auto naturalWidth = [&line] {
    QTextLayout layout(line.text_, line.font_);
    return line.layOut(layout, 1);
  };
  const double whole = naturalWidth();
  if (whole <= width_) return;
  // Not every font gives way evenly.
  const int expected = static_cast<int>(width_ / whole * 100);
  for (int stretch = expected; stretch >= narrowest; --stretch) {
    line.font_.setStretch(stretch);
    line.measureDigits();
    if (naturalWidth() > width_) continue;
    font_.setStretch(stretch);
    missing_ = line.missing_;
    return;
  }
}

platform::NSSize TextBlock::measure(double height) const {
  constexpr double anyLines = std::numeric_limits<int>::max();
  const double lines = std::clamp(std::floor(height / lineHeight_) + 1, 1.0, anyLines);
  QTextLayout layout(text_, font_);
  const double width = layOut(layout, static_cast<int>(lines));
  return {std::ceil(width), layout.lineCount() * lineHeight_};
}

void TextBlock::draw(QPainter& painter, QPointF topLeft, double height, bool truncated,
                     const QColor& color) const {
  // A height that was made of line heights holds them all, whatever the rounding.
  constexpr double tolerance = 0.01;
  const int lines = static_cast<int>(
      std::clamp(std::floor(height / lineHeight_ + tolerance), 1.0, double{maximumBytes}));
  QTextLayout layout(text_, font_);
  layOut(layout, lines);
  if (layout.lineCount() == 0) return;

  const double scale = painter.device()->devicePixelRatioF();
  const double firstBaseline = std::round((topLeft.y() + baseline_) * scale) / scale;
  const QPointF position(topLeft.x(), firstBaseline - baseline_);
  painter.setPen(color);
  const int lastLine = layout.lineCount() - 1;
  const QTextLine last = layout.lineAt(lastLine);
  const bool isCut = last.textStart() + last.textLength() < text_.size();
  for (int i = 0; i < lastLine; ++i) layout.lineAt(i).draw(&painter, position);
  if (!truncated || !isCut) {
    last.draw(&painter, position);
    return;
  }
  QTextLayout cut(elided(text_.mid(last.textStart())), font_);
  layOut(cut, 1);
  if (cut.lineCount() > 0) {
    cut.lineAt(0).draw(&painter, position + QPointF(0, lastLine * lineHeight_));
  }
}

double TextBlock::layOut(QTextLayout& layout, int maximumLines) const {
  layout.setTextOption(option_);
  layout.setFormats(digitFormats(layout.text()));
  double width = 0;
  layout.beginLayout();
  while (layout.lineCount() < maximumLines) {
    QTextLine line = layout.createLine();
    if (!line.isValid()) break;
    line.setLineWidth(width_);
    const double baseline = baseline_ + (layout.lineCount() - 1) * lineHeight_;
    line.setPosition(QPointF(0, baseline - line.ascent()));
    width = std::max(width, line.naturalTextWidth());
  }
  layout.endLayout();
  return width;
}

QList<QTextLayout::FormatRange> TextBlock::digitFormats(const QString& text) const {
  QList<QTextLayout::FormatRange> ranges;
  if (!equalDigits_) return ranges;
  for (int i = 0; i < text.size(); ++i) {
    if (text[i] < u'0' || text[i] > u'9') continue;
    const double missing = missing_[static_cast<std::size_t>(text[i].unicode() - u'0')];
    if (missing <= 0) continue;
    QFont spaced = font_;
    spaced.setLetterSpacing(QFont::AbsoluteSpacing, missing);
    QTextCharFormat format;
    format.setFont(spaced);
    ranges.append({i, 1, format});
  }
  return ranges;
}

QString TextBlock::elided(QString text) const {
  const qsizetype lineEnd = text.indexOf(QChar::LineSeparator);
  if (lineEnd >= 0) text.truncate(lineEnd);

  TextBlock line = *this;
  line.option_.setWrapMode(QTextOption::WrapAnywhere);
  QTextLayout whole(text, font_);
  line.layOut(whole, 1);
  int length = whole.lineCount() > 0 ? whole.lineAt(0).textLength() : 0;
  line.width_ = anyWidth;
  for (; length > 0; length = whole.previousCursorPosition(length)) {
    QString start = text.left(length);
    while (!start.isEmpty() && start.back().isSpace()) start.chop(1);
    start += ellipsis;
    QTextLayout candidate(start, font_);
    if (line.layOut(candidate, 1) <= width_) return start;
  }
  return ellipsis;
}

}  // namespace desktop
