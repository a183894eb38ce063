#include "desktop/remote/verbs.h"

#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusMessage>
#include <algorithm>
#include <array>
#include <cstdlib>
#include <iostream>

#include "desktop/remote/names.h"
#include "desktop/remote/template.h"

namespace desktop {

namespace {

/// The card on the bus. What it answers is asked for once; a bus without a card is noticed.
class CardOnBus final : public Remote {
 public:
  explicit CardOnBus(const QDBusConnection& bus) : bus_(bus) {}

  QVariantMap status() override {
    const QDBusMessage reply = call(QStringLiteral("Status"), {});
    const QVariant value = reply.arguments().value(0);
    return reply.type() == QDBusMessage::ReplyMessage ? qdbus_cast<QVariantMap>(value)
                                                      : QVariantMap();
  }

  std::optional<Refusal> act(const std::string& action, const std::string& argument) override {
    const QDBusMessage reply = call(
        QStringLiteral("Act"), {QString::fromStdString(action), QString::fromStdString(argument)});
    if (reply.type() == QDBusMessage::ReplyMessage) return std::nullopt;
    return Refusal{reply.errorName() == badValueError ? badValueStatus : impossibleStatus,
                   reply.errorMessage().toStdString()};
  }

  bool isThere() const override { return isThere_; }

 private:
  QDBusMessage call(const QString& member, const QVariantList& arguments) {
    constexpr int patience = 2000;  // milliseconds
    QDBusMessage call =
        QDBusMessage::createMethodCall(cardService, cardObject, publicInterface, member);
    call.setAutoStartService(false);
    call.setArguments(arguments);
    const QDBusMessage reply = bus_.call(call, QDBus::Block, patience);
    const QString error = reply.errorName();
    if (error == QLatin1String("org.freedesktop.DBus.Error.ServiceUnknown") ||
        error == QLatin1String("org.freedesktop.DBus.Error.NameHasNoOwner")) {
      isThere_ = false;
    }
    return reply;
  }

  const QDBusConnection bus_;
  bool isThere_ = true;
};

bool isAbout(const Verb& verb, const char* name) { return verb.name == name; }

int print(const QString& line) {
  std::cout << line.toStdString() << std::endl;
  return std::cout.good() ? EXIT_SUCCESS : impossibleStatus;
}

/// What a verb without a value asks for.
int printValue(const Verb& verb, const QVariantMap& status) {
  const auto value = [&](const char* key) {
    const QVariant found = status.value(QLatin1String(key));
    if (!found.isValid()) return refuse({.text = "there is none"});
    return print(found.typeId() == QMetaType::Bool
                     ? QLatin1String(found.toBool() ? "on" : "off")
                     : QString::number(found.toDouble() * (isAbout(verb, "volume") ? 100 : 1)));
  };
  if (isAbout(verb, "rate")) return value(verb.album ? "albumRating" : "rating");
  if (isAbout(verb, "love")) return value(verb.album ? "albumLoved" : "loved");
  return value("volume");
}

}  // namespace

int refuse(const Remote::Refusal& refusal) {
  std::cerr << "virelune-widget: " << refusal.text << std::endl;
  return refusal.status;
}

Result<QString> lineOf(const Verb& verb, const QVariantMap& status) {
  if (verb.format == "json") return jsonLine(status);
  if (verb.format == "waybar") return waybarLine(status);
  if (status.isEmpty()) return QString();
  const auto usual = QStringLiteral(
      "{{status}}: {{default(programmeArtist, artist)}} – {{default(programme, title)}}  "
      "{{duration(position)}}  {{stars}}");
  return filledTemplate(verb.format ? QString::fromStdString(*verb.format) : usual, status);
}

bool isForCard(const Verb& verb) {
  constexpr std::array others{"players", "export", "import", "backups", "restore", "list"};
  const bool isOther = std::find(others.begin(), others.end(), verb.name) != others.end();
  return !isOther && !verb.player && !verb.follow;
}

std::optional<int> runVerb(const Verb& verb, Remote& remote) {
  const bool asksForValue = verb.value.empty() && (isAbout(verb, "rate") || isAbout(verb, "love") ||
                                                   isAbout(verb, "volume"));
  if (!asksForValue && !isAbout(verb, "status")) {
    const auto refusal = remote.act(verb.album ? verb.name + "-album" : verb.name, verb.value);
    if (!remote.isThere()) return std::nullopt;
    return refusal ? refuse(*refusal) : EXIT_SUCCESS;
  }
  const QVariantMap status = remote.status();
  if (!remote.isThere()) return std::nullopt;
  if (status.isEmpty()) return refuse({.text = "no music player is on the session bus"});
  if (asksForValue) return printValue(verb, status);
  const auto line = lineOf(verb, status);
  return line ? print(*line) : refuse({badValueStatus, line.problem().text});
}

std::optional<int> runVerbOnCard(const Verb& verb, const QDBusConnection& bus) {
  CardOnBus card(bus);
  return runVerb(verb, card);
}

}  // namespace desktop
