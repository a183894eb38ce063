#include "desktop/program/composition.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLocale>
#include "platform/application/bundle.h"

namespace desktop {

namespace {

std::vector<std::string> userLanguages() {
  std::vector<std::string> languages;
  for (const QString& language : QLocale::system().uiLanguages()) {
    languages.push_back(language.toStdString());
  }
  return languages;
}

}  // namespace

Composition::Composition() {
  driver_.setPass([this] { runLoop_.runPass(); });
  platform_.runLoop = &runLoop_;
  platform_.graphics = &graphics_;
}

Composition::~Composition() {
  card_.reset();
  platform_.drag = nullptr;
  drag_.reset();
  // Tasks and transfers under way end before what they use.
  workers_.reset();
  http_.reset();
  platform_.globalQueue = nullptr;
  platform_.http = nullptr;
}

bool Composition::openBundle(const std::string& path) {
  bundle_ = platform::NSBundle::bundleWithPath(path, userLanguages());
  platform_.mainBundle = bundle_.get();
  return bundle_ != nullptr;
}

void Composition::setStreamHost(const std::string& host) {
  if (bundle_) bundle_->setInfoDictionaryEntry("VLStreamHost", host);
}

void Composition::setStoreHost(const std::string& host) {
  if (bundle_) bundle_->setInfoDictionaryEntry("VLStoreSearchHost", host);
}

void Composition::useNetwork() {
  http_ = std::make_unique<platform::CurlTransport>();
  workers_ = std::make_unique<WorkerPool>();
  platform_.http = http_.get();
  platform_.globalQueue = workers_.get();
}

bool Composition::useBus(const QDBusConnection& bus, const std::optional<std::string>& playerName) {
  ratings_ = std::make_unique<RatingsStore>(RatingsStore::defaultFile());
  bridge_ = std::make_unique<PlayerBridge>(
      bus, PlayerBridge::Options{.playerName = playerName, .ratings = ratings_.get()});
  desktopWorkspace_ = std::make_unique<DesktopWorkspace>(bridge_.get());
  install(*desktopWorkspace_, *bridge_);
  return bridge_->isRunning();
}

demo::DemoPlayer& Composition::useDemo() {
  demoPlayer_ = std::make_unique<demo::DemoPlayer>();
  desktopWorkspace_ = std::make_unique<DesktopWorkspace>(nullptr);
  demoWorkspace_ = std::make_unique<demo::DemoWorkspace>(*demoPlayer_, desktopWorkspace_.get());
  install(*demoWorkspace_, *demoPlayer_);
  bridge_.reset();
  return *demoPlayer_;
}

bool Composition::useDemoStation() {
  demoStation_ = demo::DemoStation::start();
  if (demoStation_) setStreamHost(demoStation_->host());
  return demoStation_ != nullptr;
}

bool Composition::useDemoStore() {
  demoStore_ = demo::DemoStore::start();
  if (!demoStore_) return false;
  setStoreHost(demoStore_->host());
  http_ = std::make_unique<platform::CurlTransport>(demoStore_->certificate());
  platform_.http = http_.get();
  return true;
}

void Composition::install(platform::WorkspaceBackend& workspace,
                          platform::ScriptingTransport& player) {
  workspace_ = std::make_unique<platform::NSWorkspace>(workspace);
  loginItems_ = std::make_unique<LoginItems>(
      LoginItems::Options{.folder = LoginItems::defaultFolder(),
                          .bundlePath = bundle_ ? bundle_->bundlePath() : std::string(),
                          .executablePath = QCoreApplication::applicationFilePath().toStdString(),
                          .argument = "--wait-for-player"},
      &player);
  platform_.workspace = workspace_.get();
  platform_.scripting = loginItems_.get();
}

Card* Composition::makeCard(const platform::PrincipalClasses& classes) {
  auto controller = platform::NSExtensionMain(classes);
  if (!controller) return nullptr;
  card_ = std::make_unique<Card>(std::move(controller), displayName());
  card_->update();
  return card_.get();
}

void Composition::useDrag(QWindow& window) {
  drag_ = std::make_unique<DragSource>(window, graphics_);
  platform_.drag = drag_.get();
}

std::string Composition::displayName() {
  if (!bundle_) return {};
  const auto entry = bundle_->infoDictionary().find("CFBundleDisplayName");
  return entry != bundle_->infoDictionary().end()
             ? entry->second.as<std::string>().value_or(std::string())
             : std::string();
}

}  // namespace desktop
