#include <unistd.h>

#include <array>
#include <filesystem>
#include <fstream>
#include <string>

#include "desktop/covers/sources.h"
#include "tests/fuzz/input.h"

extern "C" desktop::PictureInFile virelune_picture_in_file;

// The first byte chooses the kind of file, which its name tells.
int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  constexpr std::array<const char*, 8> kinds{"mp3", "flac", "ogg", "opus",
                                             "m4a", "wma",  "wv",  "aiff"};
  constexpr std::size_t bound = 4096;
  if (length == 0) return 0;
  const auto file =
      std::filesystem::temp_directory_path() /
      ("virelune-fuzz-" + std::to_string(::getpid()) + '.' + kinds[bytes[0] % kinds.size()]);
  std::ofstream(file, std::ios::binary) << std::string(bytes + 1, bytes + length);
  std::vector<std::uint8_t> picture;
  const bool isFound = virelune_picture_in_file(file.c_str(), bound, picture);
  fuzz::require(isFound != picture.empty() && picture.size() <= length);
  std::filesystem::remove(file);
  return 0;
}
