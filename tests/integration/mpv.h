// A real player with real files.
#pragma once

#include "tests/integration/processes.h"

namespace tests {

/// Three tagged files with a tone each, and the cover of their folder. Made once for all tests.
const QStringList& mediaFiles();
constexpr double mediaSeconds = 40;

/// mpv with its MPRIS plugin, without sound or picture, playing the files; it stays when the last
/// one has ended. Waits until it is on the bus and plays.
class Mpv {
 public:
  explicit Mpv(const PrivateBus& bus);

  const Program& program() const { return program_; }

 private:
  Program program_;
};

}  // namespace tests
