// What a card says of the live station's programme, for those that show no station themselves.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusServiceWatcher>
#include <functional>
#include <optional>
#include <string>

#include "widget/live_programme.h"

namespace desktop {

/// Listens to the session's first card, while there is one.
class CardProgramme final : public QObject {
  Q_OBJECT

 public:
  CardProgramme(const QDBusConnection& bus, std::function<void()> changed);

  /// None while nothing is known, or the card follows another player (by its name on the bus).
  std::optional<virelune::LiveProgramme> programmeOf(const std::string& player) const;

 private slots:  // called by the bus
  void heard(const QString& interface, const QVariantMap& values, const QStringList& others);

 private:
  void ask();
  void take(const QVariantMap& values);

  QDBusConnection bus_;
  const std::function<void()> changed_;
  QDBusServiceWatcher cards_;
  std::optional<QDBusPendingCallWatcher> question_;
  std::string player_;  ///< whose programme it is
  virelune::LiveProgramme programme_;
};

}  // namespace desktop
