// The live station of the demo: a stream server on this machine.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "demo/demo_catalogue.h"

namespace demo {

/// How fast the station moves on.
struct StationPace {
  int segmentDuration = 2;        ///< seconds, at least 1
  int segmentsPerProgramme = 10;  ///< at least 1
};

/// Serves the station's playlist (HLS, RFC 8216), its segments, each with an ID3v2 tag before
/// silent ADTS frames, and its covers over HTTP. What it serves follows from the time of day
/// alone. Runs on threads of its own, and on loopback only.
class DemoStation {
 public:
  /// Starts serving; null when no port of loopback can be had.
  static std::unique_ptr<DemoStation> start(StationPace pace = {},
                                            std::vector<Programme> list = programmes());
  class Server;
  explicit DemoStation(std::unique_ptr<Server> server);
  ~DemoStation();
  DemoStation(const DemoStation&) = delete;
  DemoStation& operator=(const DemoStation&) = delete;

  /// Where it listens, as "127.0.0.1:port".
  std::string host() const;
  /// The address that a player plays.
  std::string streamAddress() const;

 private:
  const std::unique_ptr<Server> server_;
};

}  // namespace demo
