#include "desktop/program/composition.h"

#include <utility>

#include "desktop/files/module.h"
#include "platform/application/bundle.h"

namespace desktop {

namespace {

// Entries of the information dictionary that name servers.
constexpr const char* streamHostKey = "VLStreamHost";
constexpr const char* storeHostKey = "VLStoreSearchHost";

// A file on a disk that is gone holds its reader for good, and must not hold the others up.
constexpr int coverReaders = 16;
constexpr std::chrono::milliseconds coverPatience{200};

}  // namespace

Composition::Composition(Options options)
    : bundle_(std::move(options.bundle)), coverReaders_(coverReaders, coverPatience) {
  driver_.setPass([this] { runLoop_.runPass(); });
  platform_.runLoop = &runLoop_;
  platform_.graphics = &graphics_;
  platform_.mainBundle = bundle_.get();
  for (const auto& [key, host] :
       {std::pair(streamHostKey, options.streamHost), {storeHostKey, options.storeHost}}) {
    if (host) bundle_->setInfoDictionaryEntry(key, *host);
    const auto entry = bundle_->infoDictionary().find(key);
    // The demo player brings servers of its own for those that are not named.
    if (!host && entry != bundle_->infoDictionary().end()) servers_.emplace(key, entry->second);
  }
  makePlayer(options);
  if (options.usesNetwork) {
    makeNetwork();
    for (const auto change : {&PlayerSource::demoEntered, &PlayerSource::demoLeft}) {
      QObject::connect(player_.get(), change, player_.get(), [this] {
        endNetwork();
        makeNetwork();
      });
    }
  }
  makeCard(options.widget);
}

Composition::~Composition() {
  card_.reset();
  platform_.drag = nullptr;
  drag_.reset();
  endNetwork();
}

void Composition::makePlayer(const Options& options) {
  if (options.bus) ratings_ = std::make_unique<RatingsStore>(RatingsStore::defaultFile());
  player_ = std::make_unique<PlayerSource>(
      PlayerSource::Options{.bus = options.bus,
                            .demo = options.demo,
                            .playerName = options.playerName,
                            .lastPlayer = options.lastPlayer,
                            .demoStandsIn = options.demoStandsIn,
                            .ratings = ratings_.get(),
                            .writesLibraries = options.writesLibraries,
                            .coverReaders = &coverReaders_,
                            .marksReader = &marksReader_});
  workspace_ = std::make_unique<platform::NSWorkspace>(*player_);
  loginItems_ =
      std::make_unique<LoginItems>(LoginItems::Options{.folder = LoginItems::defaultFolder(),
                                                       .bundlePath = bundle_->bundlePath(),
                                                       .executablePath = programFile().string(),
                                                       .argument = "--wait-for-player"},
                                   player_.get());
  platform_.workspace = workspace_.get();
  platform_.scripting = loginItems_.get();
  if (auto* demo = player_->demoPlayer()) demo->launch(demo::statePlaying);
}

void Composition::makeNetwork() {
  for (const auto& [key, host] : servers_) bundle_->setInfoDictionaryEntry(key, host);
  if (player_->demoPlayer() != nullptr && !servers_.empty()) makeDemoServers();
  http_ = std::make_unique<Network>(demoServers_ ? demoServers_->certificate() : std::string());
  workers_ = std::make_unique<WorkerPool>();
  platform_.http = http_.get();
  platform_.globalQueue = workers_.get();
}

void Composition::makeDemoServers() {
  auto* make = reinterpret_cast<demo::MakeDemoServers*>(
      functionOfModule("demo-servers", demo::makeDemoServersName));
  if (make == nullptr) return;
  const auto wanted = [this](const char* key, auto list) {
    return servers_.contains(key) ? list() : decltype(list())();
  };
  demoServers_.reset(
      make(wanted(streamHostKey, demo::programmes), wanted(storeHostKey, demo::storeAlbums)));
  for (const auto& [key, host] : {std::pair(streamHostKey, demoServers_->stationHost()),
                                  {storeHostKey, demoServers_->storeHost()}}) {
    if (!host.empty()) bundle_->setInfoDictionaryEntry(key, host);
  }
}

void Composition::endNetwork() {
  // Tasks and transfers under way end before what they use; transfers first, since tasks wait for
  // them.
  if (http_) http_->stop();
  workers_.reset();
  http_.reset();
  platform_.globalQueue = nullptr;
  platform_.http = nullptr;
  demoServers_.reset();
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
