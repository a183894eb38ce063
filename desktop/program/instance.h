// One card in a session: a second start brings the card that runs to the front.
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusConnection>
#include <functional>
#include <optional>
#include <string>

namespace desktop {

/// What a start hands on to the card that runs already.
struct CardRequest {
  std::optional<std::string> player = std::nullopt;  ///< to follow from now on
  bool demo = false;                                 ///< to show the demo player from now on
  bool onTop = false;
  std::string activationToken = {};  ///< lets the card come to the front (XDG Activation)
};

enum class HandingOn { done, nobodyThere, unanswered };

/// Hands a request on to the session's first card. Waits for two seconds at most.
HandingOn handOn(const QDBusConnection& bus, const CardRequest& request);

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
  /// Keys: "player" (s), "demo" (b), "on-top" (b), "activation-token" (s).
  void Show(const QVariantMap& request);

 private:
  int number_ = 0;
  Handler handler_;
};

}  // namespace desktop
