#include "desktop/window/desktop_style.h"

#include <QtCore/QMap>
#include <QtCore/QStringList>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusMetaType>
#include <QtDBus/QDBusPendingReply>
#include <QtGui/QGuiApplication>
#include <QtGui/QPalette>
#include <utility>

namespace desktop {

namespace {

using Groups = QMap<QString, QVariantMap>;

const auto portalService = QStringLiteral("org.freedesktop.portal.Desktop");
const auto portalPath = QStringLiteral("/org/freedesktop/portal/desktop");
const auto portalInterface = QStringLiteral("org.freedesktop.portal.Settings");
const auto appearanceGroup = QStringLiteral("org.freedesktop.appearance");
const auto gnomeGroup = QStringLiteral("org.gnome.desktop.interface");
const auto gnomeAccessGroup = QStringLiteral("org.gnome.desktop.a11y.interface");

}  // namespace

DesktopStyle::DesktopStyle() : reported_(appearance(), textScale_) {
  QDBusConnection bus = QDBusConnection::sessionBus();
  if (!bus.isConnected()) return;
  bus.connect(portalService, portalPath, portalInterface, QStringLiteral("SettingChanged"), this,
              SLOT(settingChanged(QString, QString, QDBusVariant)));
  ask();
}

void DesktopStyle::ask() {
  qDBusRegisterMetaType<Groups>();
  QDBusMessage question = QDBusMessage::createMethodCall(portalService, portalPath, portalInterface,
                                                         QStringLiteral("ReadAll"));
  question << QStringList{appearanceGroup, gnomeGroup, gnomeAccessGroup};
  question_.emplace(QDBusConnection::sessionBus().asyncCall(question));
  connect(&*question_, &QDBusPendingCallWatcher::finished, this, [this] {
    const QDBusPendingReply<Groups> reply = *question_;
    if (!reply.isValid()) return;
    const Groups groups = reply.value();
    for (auto group = groups.begin(); group != groups.end(); ++group) {
      for (auto value = group->begin(); value != group->end(); ++value) {
        take(group.key(), value.key(), *value);
      }
    }
    report();
  });
}

bool DesktopStyle::isDark() const {
  if (colorScheme_ == 1 || colorScheme_ == 2) return colorScheme_ == 1;
  const QPalette palette = QGuiApplication::palette();
  return palette.color(QPalette::Window).lightness() <
         palette.color(QPalette::WindowText).lightness();
}

platform::Appearance DesktopStyle::appearance() const {
  using platform::Appearance;
  if (wantsContrast_ || gnomeWantsContrast_) {
    return isDark() ? Appearance::highContrastDark : Appearance::highContrastLight;
  }
  return isDark() ? Appearance::dark : Appearance::light;
}

void DesktopStyle::paletteChanged() { report(); }

void DesktopStyle::settingChanged(const QString& group, const QString& key,
                                  const QDBusVariant& value) {
  take(group, key, value.variant());
  report();
}

void DesktopStyle::take(const QString& group, const QString& key, const QVariant& value) {
  // A value that makes no sense counts as no preference.
  if (group == appearanceGroup && key == QLatin1String("color-scheme")) {
    colorScheme_ = value.toUInt();
  } else if (group == appearanceGroup && key == QLatin1String("contrast")) {
    wantsContrast_ = value.toUInt() == 1;
  } else if (group == gnomeAccessGroup && key == QLatin1String("high-contrast")) {
    gnomeWantsContrast_ = value.toBool();
  } else if (group == gnomeGroup && key == QLatin1String("text-scaling-factor")) {
    const double scale = value.toDouble();
    textScale_ = scale > 0 ? std::optional(scale) : std::nullopt;
  }
}

void DesktopStyle::report() {
  const auto before = std::exchange(reported_, {appearance(), textScale_});
  if (reported_ != before && changeHandler_) changeHandler_();
}

}  // namespace desktop

#include "moc_desktop_style.cpp"
