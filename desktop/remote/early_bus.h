// A question on the session bus before the program is anything.
#pragma once

#include <QtDBus/QDBusConnection>
#include <functional>
#include <optional>

namespace desktop {

/// The answer of a question that is asked on a connection of its own, with nothing left behind;
/// none without a bus.
std::optional<int> askEarly(
    int argc, char** argv,
    const std::function<std::optional<int>(const QDBusConnection& bus)>& question);

}  // namespace desktop
