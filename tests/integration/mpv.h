// A real player with real files.
#pragma once

#include <QtCore/QString>
#include <filesystem>
#include <vector>

#include "tests/integration/processes.h"
#include "tests/support/temporary_folder.h"

namespace tests {

/// Three tagged files with a tone each, and the cover of their folder. Made once for all tests.
class Media {
 public:
  static constexpr double kSeconds = 40;

  static const Media& shared();
  const std::vector<std::filesystem::path>& files() const { return files_; }
  const std::filesystem::path& cover() const { return cover_; }

 private:
  Media();

  TemporaryFolder folder_;
  std::vector<std::filesystem::path> files_;
  std::filesystem::path cover_;
};

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
