// The name of a card in its session.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusConnection>
#include <functional>

#include "desktop/program/hand_on.h"

namespace desktop {

/// A card's name in the session, which takes the requests that are handed on; the card that comes
/// first takes the well-known name, others names with a number.
class Instance final : public QObject {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.virelune.Virelune.Widget")

 public:
  using Handler = std::function<void(const CardRequest&)>;
  Instance() = default;

  /// Takes a name on a bus, in the place of the one that it had.
  void claim(const QDBusConnection& bus);
  /// From 1; 0 while it has no name.
  int number() const { return number_; }
  void setHandler(Handler handler) { handler_ = std::move(handler); }

 public slots:  // called by the bus
  void Show(const QVariantMap& request);

 private:
  int number_ = 0;
  Handler handler_;
};

}  // namespace desktop
