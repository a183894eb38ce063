// How the desktop wants things to look: light or dark, how much contrast, how large a text.
#pragma once

#include <QtCore/QObject>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusVariant>
#include <functional>
#include <optional>

#include "platform/foundation/color.h"

namespace desktop {

/// Follows the settings portal (XDG Desktop Portal, org.freedesktop.portal.Settings):
/// "color-scheme" and "contrast" of all desktops, and what GNOME has of its own. Where the portal
/// has no say on light and dark, the palette has.
class DesktopStyle final : public QObject {
  Q_OBJECT

 public:
  /// Asks the portal without waiting; until it answers the palette counts.
  DesktopStyle();

  platform::Appearance appearance() const;
  /// How many times as large as usual texts are to be; none while that is not known.
  std::optional<double> textScale() const { return textScale_; }
  /// Called after every change.
  void setChangeHandler(std::function<void()> handler) { changeHandler_ = std::move(handler); }
  /// Tells that the palette may have changed.
  void paletteChanged();

 private slots:
  void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

 private:
  void ask();
  void take(const QString& group, const QString& key, const QVariant& value);
  bool isDark() const;
  void report();

  unsigned colorScheme_ = 0;  ///< 1 is dark, 2 is light, anything else no preference
  bool wantsContrast_ = false;
  bool gnomeWantsContrast_ = false;
  std::optional<double> textScale_;
  std::pair<platform::Appearance, std::optional<double>> reported_;
  std::optional<QDBusPendingCallWatcher> question_;
  std::function<void()> changeHandler_;
};

}  // namespace desktop
