// The music player daemon behind an MPRIS front: ratings lie in its stickers, which only its own
// protocol reaches (https://mpd.readthedocs.io, Client Protocol 0.23). In a module.
#pragma once

#include <optional>
#include <string>

namespace desktop {

class MpdServer {
 public:
  virtual ~MpdServer() = default;

  /// What a front told of the song that was rated.
  struct Song {
    std::string address;
    std::string path;  ///< of its file, decoded
    std::string title;
    std::string artist;
  };
  enum class Answer {
    written,      ///< the sticker has it
    refused,      ///< the server does not take it
    noStickers,   ///< the server keeps none
    otherSong,    ///< another song plays by now
    unreachable,  ///< there is no server, or it does not answer
  };
  /// Gives the song that plays a rating (0 to 100), if it is this one, as its sticker "rating" from
  /// 0 to 10, and reads it back. The server is the one of MPD_HOST and MPD_PORT, else the usual
  /// one. Waits for two seconds at most for each answer; any thread.
  virtual Answer rate(const Song& song, int rating) = 0;
};

/// The function that the module exports under this name: what it answers is the caller's.
using MakeMpdServer = MpdServer*();
inline constexpr const char* makeMpdServerName = "virelune_mpd_server";

}  // namespace desktop
