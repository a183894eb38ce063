// A live station whose segments an encoder wrote.
#pragma once

#include <string>

#include "tests/integration/loopback_server.h"
#include "tests/support/temporary_folder.h"

namespace tests {

/// Serves one segment again and again under names that move with the time of day, and the cover,
/// 96 pixels wide, that its tag points to. ffmpeg makes both; a machine without it throws.
/// Players are served the same sound without the tag: a player that reads the tag itself would
/// tell the programme in the place of the station's name.
class EncodedStation {
 public:
  EncodedStation(const std::string& title, const std::string& artist, const std::string& album);

  const std::string& host() const { return server_.host(); }
  /// What a player plays.
  std::string streamAddress() const;

 private:
  void answer(Exchange& exchange) const;

  const TemporaryFolder folder_;
  std::string cover_;
  std::string plainSegment_;
  std::string segment_;  // all are whole before the address is known to anyone
  LoopbackServer server_;
};

}  // namespace tests
