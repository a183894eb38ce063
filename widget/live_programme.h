// What is on air on the live radio station.
#pragma once

#include <string>

namespace virelune {

/// Empty texts are not told.
struct LiveProgramme {
  std::string title = {};
  std::string artist = {};
  std::string album = {};
  bool operator==(const LiveProgramme&) const = default;
};

}  // namespace virelune
