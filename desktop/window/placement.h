// Where the card was put, remembered from one run to the next.
#pragma once

#include <QtCore/QList>
#include <QtCore/QPoint>
#include <QtCore/QRect>
#include <filesystem>
#include <optional>

namespace desktop {

/// The file that keeps the place: "virelune-widget/position" under $XDG_STATE_HOME, else under
/// ~/.local/state (XDG base directories). Empty when neither is known.
std::filesystem::path positionFile();

/// The upper left corner that a file remembers; none when there is none or it is not one.
std::optional<QPoint> readPosition(const std::filesystem::path& file);

/// Remembers a corner, replacing the file as a whole; false when it cannot be written.
bool writePosition(const std::filesystem::path& file, QPoint position);

/// The corner nearest to the wanted one at which a window of this size lies on one of the screens
/// as a whole. The wanted one when there is no screen.
QPoint positionOnScreens(QPoint wanted, QSize size, const QList<QRect>& screens);

}  // namespace desktop
