#include "desktop/remote/card_programme.h"

#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingReply>
#include <array>
#include <string>
#include <utility>

#include "desktop/remote/names.h"

namespace desktop {

namespace {

const auto properties = QStringLiteral("org.freedesktop.DBus.Properties");

}  // namespace

CardProgramme::CardProgramme(const QDBusConnection& bus, std::function<void()> changed)
    : bus_(bus),
      changed_(std::move(changed)),
      cards_(cardService, bus, QDBusServiceWatcher::WatchForOwnerChange) {
  bus_.connect(cardService, cardObject, properties, QStringLiteral("PropertiesChanged"), this,
               SLOT(heard(QString, QVariantMap, QStringList)));
  connect(&cards_, &QDBusServiceWatcher::serviceOwnerChanged, this,
          [this](const QString&, const QString&, const QString& owner) {
            programme_ = {};
            if (owner.isEmpty()) return changed_();
            ask();
          });
  ask();
}

void CardProgramme::ask() {
  auto question =
      QDBusMessage::createMethodCall(cardService, cardObject, properties, QStringLiteral("GetAll"));
  question.setAutoStartService(false);
  question << publicInterface;
  question_.emplace(bus_.asyncCall(question));
  connect(&*question_, &QDBusPendingCallWatcher::finished, this, [this] {
    const QDBusPendingReply<QVariantMap> reply = *question_;
    if (reply.isValid()) take(reply.value());
  });
}

void CardProgramme::heard(const QString& interface, const QVariantMap& values, const QStringList&) {
  if (interface == publicInterface) take(values);
}

void CardProgramme::take(const QVariantMap& values) {
  const auto before = std::pair(player_, programme_);
  const std::array texts{std::pair{QStringLiteral("Player"), &player_},
                         std::pair{QStringLiteral("Programme"), &programme_.title},
                         std::pair{QStringLiteral("ProgrammeArtist"), &programme_.artist},
                         std::pair{QStringLiteral("ProgrammeAlbum"), &programme_.album}};
  for (const auto& [name, text] : texts) {
    if (values.contains(name)) *text = values.value(name).toString().toStdString();
  }
  if (std::pair(player_, programme_) != before) changed_();
}

std::optional<virelune::LiveProgramme> CardProgramme::programmeOf(const std::string& player) const {
  return player == player_ ? std::optional(programme_) : std::nullopt;
}

}  // namespace desktop

#include "moc_card_programme.cpp"
