// The ratings that a user has given in a player, read from that player's own file.
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "desktop/ratings/record.h"
#include "desktop/result.h"

namespace desktop {

/// The file in which a player keeps its library.
struct PlayerLibrary {
  enum class Player { rhythmbox, quodLibet, strawberry, clementine };
  Player player;
  std::filesystem::path file;
};

/// The library that "rhythmbox:", "quodlibet:", "strawberry:" or "clementine:" names, with its file
/// after the colon, else the usual one; none for any other text.
std::optional<PlayerLibrary> playerLibraryNamed(const std::string& name);

/// Hands out the tracks that have stars, without a date, so that they count as older than what was
/// set here. The file is only read, and never locked: the player may write it meanwhile.
Result<> readPlayerLibrary(const PlayerLibrary& library,
                           const std::function<void(const RatingsRecord&)>& visit);

}  // namespace desktop
