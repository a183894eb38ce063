// Doing what a script asks, with the card that runs or without one.
#pragma once

#include <QtCore/QVariantMap>
#include <QtDBus/QDBusConnection>
#include <optional>
#include <string>

#include "desktop/remote/verb.h"

namespace desktop {

/// Exit statuses of verbs: there was nothing to do it with, or it did not work; what was asked
/// makes no sense.
inline constexpr int impossibleStatus = 1;
inline constexpr int badValueStatus = 2;

/// The program that has the player, be it another process.
class Remote {
 public:
  struct Refusal {
    int status = impossibleStatus;
    std::string text;
  };
  virtual ~Remote() = default;
  /// See statusOf(); empty without a player.
  virtual QVariantMap status() = 0;
  /// None when it is done.
  virtual std::optional<Refusal> act(const std::string& action, const std::string& argument) = 0;
  /// False once that program has turned out not to run.
  virtual bool isThere() const { return true; }
};

/// Says why on standard error, as every verb does; answers the exit status.
int refuse(const Remote::Refusal& refusal);

/// One line about a status as the verb wants it written.
Result<QString> lineOf(const Verb& verb, const QVariantMap& status);

/// True for what is about the player, as the card that runs knows it.
bool isForCard(const Verb& verb);
/// Does a verb about the player and answers the exit status; none when nobody is there.
std::optional<int> runVerb(const Verb& verb, Remote& remote);
/// The same with the card that runs.
std::optional<int> runVerbOnCard(const Verb& verb, const QDBusConnection& bus);

}  // namespace desktop
