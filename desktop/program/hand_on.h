// One card in a session: a second start brings the card that runs to the front.
#pragma once

#include <QtCore/QVariantMap>
#include <QtDBus/QDBusConnection>
#include <optional>
#include <string>

#include "desktop/program/command_line.h"
#include "desktop/remote/names.h"

namespace desktop {

/// What a start hands on to the card that runs already.
struct CardRequest {
  std::optional<std::string> player = std::nullopt;  ///< to follow from now on
  bool demo = false;                                 ///< to show the demo player from now on
  bool onTop = false;
  std::string activationToken = {};  ///< lets the card come to the front (XDG Activation)
};

/// As the first card takes it: "player" (s), "demo" (b), "on-top" (b), "activation-token" (s).
QVariantMap valuesOf(const CardRequest& request);
CardRequest requestOf(const QVariantMap& values);

enum class HandingOn { done, nobodyThere, unanswered };

/// Hands a request on to the session's first card. Waits for two seconds at most.
HandingOn handOn(const QDBusConnection& bus, const CardRequest& request);

/// The exit status when the card that runs has taken what a command line asks of it, or one line on
/// standard error says that it does not answer; none when there is no such card.
std::optional<int> handOn(const QDBusConnection& bus, const CommandLine& commandLine);

}  // namespace desktop
