#include "desktop/window/color_scheme.h"

#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusPendingReply>
#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>
#include <utility>

namespace desktop {

namespace {

constexpr const char* portalService = "org.freedesktop.portal.Desktop";
constexpr const char* portalPath = "/org/freedesktop/portal/desktop";
constexpr const char* portalInterface = "org.freedesktop.portal.Settings";
constexpr const char* settingGroup = "org.freedesktop.appearance";
constexpr const char* settingKey = "color-scheme";

/// The portal's answer comes wrapped, once or twice depending on its age.
QVariant unwrapped(QVariant value) {
  while (value.canConvert<QDBusVariant>()) value = value.value<QDBusVariant>().variant();
  return value;
}

}  // namespace

ColorScheme::ColorScheme() : reported_(appearance()) {
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  bus.connect(portalService, portalPath, portalInterface, "SettingChanged", this,
              SLOT(settingChanged(QString, QString, QDBusVariant)));
  ask();
}

void ColorScheme::ask() {
  QDBusMessage question =
      QDBusMessage::createMethodCall(portalService, portalPath, portalInterface, "Read");
  question << settingGroup << settingKey;
  question_.emplace(QDBusConnection::sessionBus().asyncCall(question));
  connect(&*question_, &QDBusPendingCallWatcher::finished, this, [this] {
    const QDBusPendingReply<QDBusVariant> reply = *question_;
    if (reply.isValid()) setPreference(unwrapped(reply.value().variant()));
  });
}

platform::Appearance ColorScheme::appearance() const {
  switch (preference_) {
    case Preference::dark:
      return platform::Appearance::dark;
    case Preference::light:
      return platform::Appearance::light;
    case Preference::none:
      break;
  }
  const QPalette palette = QGuiApplication::palette();
  return palette.color(QPalette::Window).lightness() <
                 palette.color(QPalette::WindowText).lightness()
             ? platform::Appearance::dark
             : platform::Appearance::light;
}

void ColorScheme::paletteChanged() { report(); }

void ColorScheme::settingChanged(const QString& group, const QString& key,
                                 const QDBusVariant& value) {
  if (group == settingGroup && key == settingKey) setPreference(unwrapped(value.variant()));
}

void ColorScheme::setPreference(const QVariant& value) {
  // 0: no preference, 1: dark, 2: light; anything else counts as 0.
  bool isNumber = false;
  const unsigned number = value.toUInt(&isNumber);
  preference_ = !isNumber     ? Preference::none
                : number == 1 ? Preference::dark
                : number == 2 ? Preference::light
                              : Preference::none;
  report();
}

void ColorScheme::report() {
  const platform::Appearance before = std::exchange(reported_, appearance());
  if (reported_ != before && changeHandler_) changeHandler_();
}

}  // namespace desktop

#include "moc_color_scheme.cpp"
