// The music store of the demo: a search service on this machine.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "demo/demo_catalogue.h"

namespace demo {

/// Answers album searches as the public search service does, and serves the covers that its
/// answers name. The widget searches over https and nothing else, so the store speaks TLS with a
/// certificate that is made anew at every start and kept in memory. Only a transport that is given
/// its text trusts it, so that nothing else changes about whom the program believes:
///
///     store = demo::DemoStore::start();
///     transport = std::make_unique<platform::CurlTransport>(store->certificate());
///     bundle->setInfoDictionaryEntry("VLStoreSearchHost", store->host());
///
/// Runs on threads of its own, and on loopback only. Destroy the transport first.
class DemoStore {
 public:
  /// Starts serving; null when no certificate can be made or no port of loopback can be had.
  static std::unique_ptr<DemoStore> start(std::vector<StoreAlbum> albums = storeAlbums());
  class Server;
  explicit DemoStore(std::unique_ptr<Server> server);
  ~DemoStore();
  DemoStore(const DemoStore&) = delete;
  DemoStore& operator=(const DemoStore&) = delete;

  /// Where it listens, as "127.0.0.1:port".
  std::string host() const;
  /// The store's certificate in PEM (RFC 7468).
  std::string certificate() const;

 private:
  const std::unique_ptr<Server> server_;
};

}  // namespace demo
