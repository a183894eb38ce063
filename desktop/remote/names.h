// Where the program is found on the session bus.
#pragma once

#include <QtCore/QString>

namespace desktop {

/// The session's first card, or the service without a window in its place.
inline const auto cardService = QStringLiteral("org.virelune.Virelune.Widget");
inline const auto cardObject = QStringLiteral("/org/virelune/Virelune/Widget");
/// Between cards.
inline const auto cardInterface = QStringLiteral("org.virelune.Virelune.Widget");
/// For other programs: a later version that is not compatible gets another number.
inline const auto publicInterface = QStringLiteral("org.virelune.Virelune.Widget1");

// Errors of the public interface, beside those that every bus has.
inline const auto impossibleError =
    QStringLiteral("org.virelune.Virelune.Widget1.Error.Impossible");
inline const auto badValueError = QStringLiteral("org.freedesktop.DBus.Error.InvalidArgs");

}  // namespace desktop
