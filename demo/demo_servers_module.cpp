#include <memory>
#include <utility>
#include <vector>

#include "demo/demo_servers.h"
#include "demo/demo_station.h"
#include "demo/demo_store.h"

namespace demo {

namespace {

class LoopbackServers final : public DemoServers {
 public:
  LoopbackServers(std::vector<Programme> programmes, std::vector<StoreAlbum> albums)
      : station_(programmes.empty() ? nullptr : DemoStation::start({}, std::move(programmes))),
        store_(albums.empty() ? nullptr : DemoStore::start(std::move(albums))) {}

  std::string stationHost() const override { return station_ ? station_->host() : std::string(); }
  std::string storeHost() const override { return store_ ? store_->host() : std::string(); }
  std::string certificate() const override {
    return store_ ? store_->certificate() : std::string();
  }

 private:
  const std::unique_ptr<DemoStation> station_;
  const std::unique_ptr<DemoStore> store_;
};

}  // namespace

}  // namespace demo

extern "C" __attribute__((visibility("default"))) demo::DemoServers* virelune_demo_servers(
    std::vector<demo::Programme> programmes, std::vector<demo::StoreAlbum> albums) {
  return std::make_unique<demo::LoopbackServers>(std::move(programmes), std::move(albums))
      .release();
}
