// A line about what plays, made as the user wants it.
#pragma once

#include <QtCore/QString>
#include <QtCore/QVariantMap>

#include "desktop/result.h"

namespace desktop {

/// Fills a template in the language of playerctl from a status (see statusOf): "{{title}}" is a
/// value, "{{duration(position)}}" a function of values and texts in quotation marks. Beside the
/// keys of the status there are playerctl's: playerName, status ("Playing"), xesam:title and its
/// like, mpris:length, mpris:artUrl; there, and for position, times are microseconds. A value that
/// is not there is empty. Functions: duration, default, lc, uc, trunc, markup_escape, emoji. An
/// unknown function and a brace that is not closed are problems.
Result<QString> filledTemplate(const QString& text, const QVariantMap& status);

/// The status as one line of JSON (RFC 8259).
QString jsonLine(const QVariantMap& status);

/// The status as Waybar takes it from a program: text, tooltip, class and percentage as JSON.
QString waybarLine(const QVariantMap& status);

}  // namespace desktop
