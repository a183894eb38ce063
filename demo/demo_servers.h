// The servers of the demo, as a module: its station and its store.
#pragma once

#include <string>
#include <vector>

#include "demo/demo_catalogue.h"

namespace demo {

/// What listens while the demo plays; each host is "127.0.0.1:port", empty when that one does not.
class DemoServers {
 public:
  virtual ~DemoServers() = default;
  virtual std::string stationHost() const = 0;
  virtual std::string storeHost() const = 0;
  /// What the store is trusted by, in PEM; empty without a store.
  virtual std::string certificate() const = 0;
};

/// The function that the module exports under this name: what it answers is the caller's. What has
/// nothing to play or to sell does not listen. A module does not see the program's bundle, so the
/// covers come with the lists.
using MakeDemoServers = DemoServers*(std::vector<Programme> programmes,
                                     std::vector<StoreAlbum> albums);
inline constexpr const char* makeDemoServersName = "virelune_demo_servers";

}  // namespace demo
