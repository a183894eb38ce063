#include <memory>

#include "demo/demo_servers.h"
#include "demo/demo_station.h"
#include "demo/demo_store.h"

namespace demo {

namespace {

class LoopbackServers final : public DemoServers {
 public:
  LoopbackServers(bool station, bool store)
      : station_(station ? DemoStation::start() : nullptr),
        store_(store ? DemoStore::start() : nullptr) {}

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
    bool station, bool store) {
  return std::make_unique<demo::LoopbackServers>(station, store).release();
}
