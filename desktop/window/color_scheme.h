// Whether the desktop is light or dark.
#pragma once

#include <QtCore/QObject>
#include <QtDBus/QDBusPendingCallWatcher>
#include <QtDBus/QDBusVariant>
#include <functional>
#include <optional>

#include "platform/foundation/color.h"

namespace desktop {

/// Follows the desktop's colour scheme: the setting "color-scheme" of the settings portal (XDG
/// Desktop Portal, org.freedesktop.portal.Settings), and where it has no say the palette.
class ColorScheme final : public QObject {
  Q_OBJECT

 public:
  /// Asks the portal without waiting; until it answers the palette counts.
  ColorScheme();

  platform::Appearance appearance() const;
  /// Called after every change.
  void setChangeHandler(std::function<void()> handler) { changeHandler_ = std::move(handler); }
  /// Tells that the palette may have changed.
  void paletteChanged();

 private slots:
  void settingChanged(const QString& group, const QString& key, const QDBusVariant& value);

 private:
  void ask();
  void setPreference(const QVariant& value);
  void report();

  enum class Preference { none, dark, light };
  Preference preference_ = Preference::none;
  platform::Appearance reported_;
  std::optional<QDBusPendingCallWatcher> question_;
  std::function<void()> changeHandler_;
};

}  // namespace desktop
