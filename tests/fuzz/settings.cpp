#include "desktop/files/settings.h"

#include <filesystem>
#include <fstream>
#include <iostream>

#include "tests/fuzz/input.h"

using fuzz::require;

int LLVMFuzzerTestOneInput(const std::uint8_t* bytes, std::size_t length) {
  static const std::filesystem::path file =
      std::filesystem::temp_directory_path() / ("fuzz-settings-" + std::to_string(::getpid()));
  std::cerr.setstate(std::ios::failbit);  // what it says of damaged files
  std::ofstream(file, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes), static_cast<std::streamsize>(length));
  {
    desktop::Settings settings(file);
    const double scale = settings.scale().value_or(1) * settings.textScale().value_or(1);
    require(scale >= 1 && scale <= 16);
    static_cast<void>(settings.position(QStringLiteral("A 1x1+0+0")));
    static_cast<void>(settings.lastPlayer());
    static_cast<void>(settings.isOnTop());
    settings.setPlayer("mpv");
    require(settings.player() == "mpv");
  }
  require(desktop::Settings(file).player() == "mpv");
  for (const char* ending : {"", ".damaged"}) std::filesystem::remove(file.string() + ending);
  return 0;
}
