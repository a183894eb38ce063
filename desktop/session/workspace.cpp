#include "desktop/session/workspace.h"

#include <QtCore/QStandardPaths>
#include <QtCore/QUrl>
#include <QtGui/QDesktopServices>
#include <QtGui/QIcon>
#include <QtGui/QPixmap>

#include "desktop/files/module.h"
#include "desktop/graphics/qt_image.h"
#include "platform/application/player_dictionary.h"
#include "platform/foundation/text.h"
#include "platform/graphics/graphics.h"
#include "platform/platform.h"

namespace desktop {

namespace {

constexpr int iconSide = 256;  // pixels, where the theme has it that large

/// What is known when the module is missing.
class NoApplications final : public InstalledApplications {
 public:
  std::optional<std::string> pathForIdentifier(const std::string&) override { return {}; }
  std::optional<std::string> pathForType(const std::string&) override { return {}; }
  std::optional<std::string> pathForPlayer() override { return {}; }
  std::optional<std::string> iconName(const std::string&) override { return {}; }
  bool launch(const std::string&, const std::string&) override { return false; }
};

std::unique_ptr<InstalledApplications> loadApplications() {
  auto* make = reinterpret_cast<MakeInstalledApplications*>(
      functionOfModule("installed-applications", makeInstalledApplicationsName));
  if (make != nullptr) return std::unique_ptr<InstalledApplications>(make());
  return std::make_unique<NoApplications>();
}

bool isStoreScheme(const std::string& scheme) { return scheme == "itms" || scheme == "itmss"; }

/// The user's choice of programs for these is known to the desktop, which Qt asks.
bool isGeneralScheme(const std::string& scheme) {
  return scheme == "http" || scheme == "https" || scheme == "mailto";
}

/// Off-screen, Qt has no icon theme: there is the one that all others fall back on.
void chooseIconTheme() {
  if (!QIcon::themeName().isEmpty()) return;
  const auto folders = [](const char* name) {
    return QStandardPaths::locateAll(QStandardPaths::GenericDataLocation, QLatin1String(name),
                                     QStandardPaths::LocateDirectory);
  };
  QIcon::setThemeSearchPaths(folders("icons"));
  QIcon::setFallbackSearchPaths(folders("pixmaps"));
  QIcon::setThemeName(QStringLiteral("hicolor"));
}

}  // namespace

InstalledApplications& DesktopWorkspace::applications() {
  if (!applications_) applications_ = loadApplications();
  return *applications_;
}

platform::ObjectArray DesktopWorkspace::runningApplications(const std::string& bundleIdentifier) {
  return runningInstances(player_, bundleIdentifier);
}

std::optional<std::string> DesktopWorkspace::applicationPath(const std::string& bundleIdentifier) {
  return isPlayer(bundleIdentifier) ? playerPath()
                                    : applications().pathForIdentifier(bundleIdentifier);
}

std::optional<std::string> DesktopWorkspace::playerPath() {
  if (player_ == nullptr) return std::nullopt;
  if (const std::string identifier = player_->desktopEntry(); !identifier.empty()) {
    if (auto path = applications().pathForIdentifier(identifier)) return path;
  }
  if (player_->isRunning()) return std::nullopt;
  const auto usual = applications().pathForType("audio/mpeg");
  return usual ? usual : applications().pathForPlayer();
}

std::shared_ptr<platform::NSImage> DesktopWorkspace::icon(const std::string& path) {
  const auto name = applications().iconName(path);
  if (!name) return nullptr;
  if (name->starts_with('/')) {
    platform::Graphics* graphics = platform::current().graphics;
    return graphics != nullptr ? graphics->imageAtPath(*name) : nullptr;
  }
  chooseIconTheme();
  const QImage pixels = QIcon::fromTheme(QString::fromStdString(*name))
                            .pixmap(QSize(iconSide, iconSide), 1)
                            .toImage();
  if (pixels.isNull()) return nullptr;
  return platform::make<BitmapImage>(
      pixels,
      platform::NSSize{static_cast<double>(pixels.width()), static_cast<double>(pixels.height())});
}

void DesktopWorkspace::launchApplication(const std::string& bundleIdentifier) {
  if (isPlayer(bundleIdentifier) && player_ != nullptr && player_->raise()) return;
  if (const auto path = applicationPath(bundleIdentifier)) applications().launch(*path, {});
}

void DesktopWorkspace::openURL(const platform::URL& url) {
  QMetaObject::invokeMethod(&mainThread_, [this, url] { open(url); });
}

void DesktopWorkspace::open(const platform::URL& url) {
  std::string scheme = url.scheme();
  std::string address = url.absoluteString();
  const auto launches = [&] {
    const auto application = applications().pathForType("x-scheme-handler/" + scheme);
    return application && applications().launch(*application, address);
  };
  if (isStoreScheme(scheme)) {
    if (launches()) return;
    address.replace(0, scheme.size(), "https");
    scheme = "https";
  }
  if (!isGeneralScheme(scheme) || launches()) return;
  // Where none is named the desktop may have another way.
  QDesktopServices::openUrl(QUrl(QString::fromStdString(address)));
}

}  // namespace desktop
