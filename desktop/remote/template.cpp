#include "desktop/remote/template.h"

#include <QtCore/QJsonDocument>
#include <QtCore/QJsonObject>
#include <QtCore/QMap>
#include <QtCore/QStringList>
#include <algorithm>
#include <functional>

namespace desktop {

namespace {

constexpr double microseconds = 1e6;

/// The nearest one below within bounds; no number is the lower bound.
qint64 wholeNumber(double number, double lowest, double highest) {
  return static_cast<qint64>(number > lowest ? std::min(number, highest) : lowest);
}

constexpr double longestTime = 9e18;  // microseconds; more is no number of 64 bits

/// "1:02:03" or "2:03".
QString duration(double seconds) {
  const qint64 whole = wholeNumber(seconds, 0, longestTime / microseconds);
  const auto two = [](qint64 part) {
    return QStringLiteral("%1").arg(part, 2, 10, QLatin1Char('0'));
  };
  const QString minutes = whole < 3600 ? QString::number(whole / 60)
                                       : QString::number(whole / 3600) + ':' + two(whole / 60 % 60);
  return minutes + ':' + two(whole % 60);
}

QString stars(double rating) {
  const qint64 full = wholeNumber(rating, 0, 5);
  return QStringLiteral("★").repeated(full) +
         (std::min(rating, 5.0) > static_cast<double>(full) ? QStringLiteral("½") : QString());
}

/// What a name stands for, as playerctl writes it.
QVariant valueOf(const QString& name, const QVariantMap& status) {
  static const QMap<QString, QString> others{
      {QStringLiteral("playerName"), QStringLiteral("player")},
      {QStringLiteral("playerInstance"), QStringLiteral("player")},
      {QStringLiteral("xesam:title"), QStringLiteral("title")},
      {QStringLiteral("xesam:artist"), QStringLiteral("artist")},
      {QStringLiteral("xesam:album"), QStringLiteral("album")},
      {QStringLiteral("xesam:albumArtist"), QStringLiteral("albumArtist")},
      {QStringLiteral("xesam:url"), QStringLiteral("address")},
      {QStringLiteral("mpris:artUrl"), QStringLiteral("artwork")},
      {QStringLiteral("mpris:length"), QStringLiteral("length")}};
  const QString key = others.value(name, name);
  if (name == QLatin1String("status")) {
    QString state = status.value(QStringLiteral("state")).toString();
    return state.isEmpty() ? state : state.left(1).toUpper() + state.mid(1);
  }
  if (name == QLatin1String("stars"))
    return stars(status.value(QStringLiteral("rating")).toDouble());
  QVariant value = status.value(key);
  const bool isTime = key == QLatin1String("length") || key == QLatin1String("position");
  if (!isTime || !value.isValid()) return value;
  return wholeNumber(value.toDouble() * microseconds, 0, longestTime);
}

QString emoji(const QString& state) {
  if (state == QLatin1String("Playing")) return QStringLiteral("▶️");
  return state == QLatin1String("Paused") ? QStringLiteral("⏸️") : QStringLiteral("⏹️");
}

using Arguments = QList<QVariant>;
using Function = QString (*)(const Arguments&);
struct KnownFunction {
  qsizetype arguments;
  Function function;
};

const QMap<QString, KnownFunction>& functions() {
  static const QMap<QString, KnownFunction> known{
      {QStringLiteral("duration"),
       {1,
        [](const Arguments& of) {
          return of[0].isValid() ? duration(of[0].toDouble() / microseconds) : QString();
        }}},
      {QStringLiteral("default"),
       {2,
        [](const Arguments& of) {
          return of[0].toString().isEmpty() ? of[1].toString() : of[0].toString();
        }}},
      {QStringLiteral("lc"), {1, [](const Arguments& of) { return of[0].toString().toLower(); }}},
      {QStringLiteral("uc"), {1, [](const Arguments& of) { return of[0].toString().toUpper(); }}},
      {QStringLiteral("trunc"),
       {2,
        [](const Arguments& of) {
          const QString text = of[0].toString();
          const auto longest = std::max(of[1].toLongLong(), 0LL);
          return text.size() > longest ? text.left(longest) + QStringLiteral("…") : text;
        }}},
      {QStringLiteral("markup_escape"),
       {1, [](const Arguments& of) { return of[0].toString().toHtmlEscaped(); }}},
      {QStringLiteral("emoji"), {1, [](const Arguments& of) { return emoji(of[0].toString()); }}}};
  return known;
}

/// The parts between commas, but for those in quotation marks.
QStringList splitArguments(const QString& text) {
  QStringList parts{QString()};
  QChar quote;
  for (const QChar character : text) {
    if (quote.isNull() ? character == '"' || character == '\'' : character == quote) {
      quote = quote.isNull() ? character : QChar();
    }
    if (quote.isNull() && character == ',') {
      parts.append(QString());
    } else {
      parts.last().append(character);
    }
  }
  return parts;
}

/// The value of what stands between the braces.
Result<QString> evaluated(const QString& expression, const QVariantMap& status) {
  const qsizetype bracket = expression.indexOf('(');
  if (bracket < 0) return valueOf(expression, status).toString();
  const QString name = expression.left(bracket).trimmed();
  const auto found = functions().find(name);
  if (found == functions().end() || !expression.endsWith(')')) {
    return Problem{"the template has no function \"" + name.left(40).toStdString() + '"'};
  }
  Arguments arguments;
  for (QString part :
       splitArguments(expression.mid(bracket + 1, expression.size() - bracket - 2))) {
    part = part.trimmed();
    const bool isQuoted =
        part.size() >= 2 && (part[0] == '"' || part[0] == '\'') && part.endsWith(part[0]);
    bool isNumber = false;
    part.toLongLong(&isNumber);
    if (isQuoted) {
      arguments << part.mid(1, part.size() - 2);
    } else {
      arguments << (isNumber ? QVariant(part) : valueOf(part, status));
    }
  }
  if (arguments.size() != found->arguments) {
    return Problem{"in the template, " + name.toStdString() + " takes " +
                   std::to_string(found->arguments) + " values"};
  }
  return found->function(arguments);
}

}  // namespace

Result<QString> filledTemplate(const QString& text, const QVariantMap& status) {
  QString line;
  qsizetype begin = 0;
  for (qsizetype open = 0; (open = text.indexOf(QLatin1String("{{"), begin)) >= 0;) {
    const qsizetype close = text.indexOf(QLatin1String("}}"), open);
    if (close < 0) return Problem{"the template has a \"{{\" without its \"}}\""};
    auto value = evaluated(text.mid(open + 2, close - open - 2).trimmed(), status);
    if (!value) return value;
    line += text.mid(begin, open - begin) + *value;
    begin = close + 2;
  }
  return line + text.mid(begin);
}

QString jsonLine(const QVariantMap& status) {
  return QString::fromUtf8(
      QJsonDocument(QJsonObject::fromVariantMap(status)).toJson(QJsonDocument::Compact));
}

QString waybarLine(const QVariantMap& status) {
  const auto text = [&status](const char* key) {
    return status.value(QLatin1String(key)).toString();
  };
  const bool isLive = status.contains(QStringLiteral("programme"));
  QStringList parts{text(isLive ? "programmeArtist" : "artist"),
                    text(isLive ? "programme" : "title")};
  parts.removeAll(QString());
  const double rating = status.value(QStringLiteral("rating")).toDouble();
  QStringList tooltip{text("programme"), text("programmeArtist"), text("programmeAlbum"),
                      text("title"),     text("artist"),          text("album"),
                      stars(rating)};
  tooltip.removeAll(QString());
  const QString state = status.isEmpty() ? QStringLiteral("none") : text("state");
  const double length = status.value(QStringLiteral("length")).toDouble();
  const double position = status.value(QStringLiteral("position")).toDouble();
  QStringList classes{state};
  if (status.value(QStringLiteral("loved")).toBool()) classes << QStringLiteral("loved");
  // The text is Pango markup unless Waybar is told otherwise.
  return jsonLine({{QStringLiteral("text"), parts.join(QStringLiteral(" – ")).toHtmlEscaped()},
                   {QStringLiteral("tooltip"), tooltip.join('\n').toHtmlEscaped()},
                   {QStringLiteral("alt"), state},
                   {QStringLiteral("class"), classes},
                   {QStringLiteral("percentage"),
                    length > 0 ? wholeNumber(100 * position / length, 0, 100) : 0}});
}

}  // namespace desktop
