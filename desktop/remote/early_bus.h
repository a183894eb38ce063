// A question on the session bus before the program is anything.
#pragma once

#include <QtDBus/QDBusConnection>
#include <functional>
#include <optional>

namespace desktop {

/// The answer of a question that is asked on a connection of its own; none without a bus. Without
/// an answer nothing is left behind. With one the connection stays: the program is about to end,
/// and to take leave of the bus would take longer than the question.
std::optional<int> askEarly(
    int argc, char** argv,
    const std::function<std::optional<int>(const QDBusConnection& bus)>& question);

}  // namespace desktop
