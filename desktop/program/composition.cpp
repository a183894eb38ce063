#include "desktop/program/composition.h"

#include <QtCore/QCoreApplication>
#include <QtCore/QLocale>
#include <utility>

#include "platform/application/bundle.h"

namespace desktop {

std::unique_ptr<platform::NSBundle> openBundle(const std::string& path) {
  std::vector<std::string> languages;
  for (const QString& language : QLocale::system().uiLanguages()) {
    languages.push_back(language.toStdString());
  }
  return platform::NSBundle::bundleWithPath(path, std::move(languages));
}

Composition::Composition(Options options) : bundle_(std::move(options.bundle)) {
  driver_.setPass([this] { runLoop_.runPass(); });
  platform_.runLoop = &runLoop_;
  platform_.graphics = &graphics_;
  platform_.mainBundle = bundle_.get();
  makePlayer(options);
  if (options.usesNetwork) makeNetwork(options);
  makeCard(options.widget);
}

Composition::~Composition() {
  card_.reset();
  platform_.drag = nullptr;
  drag_.reset();
  // Tasks and transfers under way end before what they use; transfers first, since tasks wait for
  // them.
  if (http_) http_->stop();
  workers_.reset();
  http_.reset();
  platform_.globalQueue = nullptr;
  platform_.http = nullptr;
}

void Composition::makePlayer(const Options& options) {
  if (options.bus) {
    ratings_ = std::make_unique<RatingsStore>(RatingsStore::defaultFile());
    bridge_ = std::make_unique<PlayerBridge>(
        *options.bus,
        PlayerBridge::Options{.playerName = options.playerName, .ratings = ratings_.get()});
    if (options.demoStandsIn && !bridge_->isRunning()) bridge_.reset();
  }
  desktopWorkspace_ = std::make_unique<DesktopWorkspace>(bridge_.get());
  platform::WorkspaceBackend* workspace = desktopWorkspace_.get();
  platform::ScriptingTransport* player = bridge_.get();
  if (!bridge_) {
    demoPlayer_ = std::make_unique<demo::DemoPlayer>();
    demoWorkspace_ = std::make_unique<demo::DemoWorkspace>(*demoPlayer_, desktopWorkspace_.get());
    workspace = demoWorkspace_.get();
    player = demoPlayer_.get();
  }
  workspace_ = std::make_unique<platform::NSWorkspace>(*workspace);
  loginItems_ = std::make_unique<LoginItems>(
      LoginItems::Options{.folder = LoginItems::defaultFolder(),
                          .bundlePath = bundle_->bundlePath(),
                          .executablePath = QCoreApplication::applicationFilePath().toStdString(),
                          .argument = "--wait-for-player"},
      player);
  platform_.workspace = workspace_.get();
  platform_.scripting = loginItems_.get();
  if (demoPlayer_) demoPlayer_->launch(demo::statePlaying);
}

void Composition::makeNetwork(const Options& options) {
  const auto setServer = [this](const char* key, const std::string& host) {
    bundle_->setInfoDictionaryEntry(key, host);
  };
  if (demoPlayer_ && !options.streamHost) demoStation_ = demo::DemoStation::start();
  if (demoPlayer_ && !options.storeHost) demoStore_ = demo::DemoStore::start();
  if (demoStation_) setServer("VLStreamHost", demoStation_->host());
  if (demoStore_) setServer("VLStoreSearchHost", demoStore_->host());
  if (options.streamHost) setServer("VLStreamHost", *options.streamHost);
  if (options.storeHost) setServer("VLStoreSearchHost", *options.storeHost);
  http_ = std::make_unique<platform::CurlTransport>(demoStore_ ? demoStore_->certificate()
                                                               : std::string());
  workers_ = std::make_unique<WorkerPool>();
  platform_.http = http_.get();
  platform_.globalQueue = workers_.get();
}

void Composition::makeCard(const platform::PrincipalClasses& widget) {
  auto controller = platform::NSExtensionMain(widget);
  if (!controller) return;
  card_ = std::make_unique<Card>(std::move(controller), displayName());
  card_->update();
}

void Composition::useDrag(QWindow& window) {
  drag_ = std::make_unique<DragSource>(window, graphics_);
  platform_.drag = drag_.get();
}

std::string Composition::displayName() const {
  const auto entry = bundle_->infoDictionary().find("CFBundleDisplayName");
  return entry != bundle_->infoDictionary().end()
             ? entry->second.as<std::string>().value_or(std::string())
             : std::string();
}

}  // namespace desktop
