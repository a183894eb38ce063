#include <mpd/client.h>

#include <charconv>
#include <cstring>
#include <memory>
#include <string_view>

#include "desktop/player/mpd_server.h"

namespace desktop {

namespace {

constexpr unsigned patience = 2000;  // milliseconds
constexpr const char* ratingSticker = "rating";

struct Free {
  void operator()(mpd_connection* connection) const { mpd_connection_free(connection); }
  void operator()(mpd_song* song) const { mpd_song_free(song); }
};
using Connection = std::unique_ptr<mpd_connection, Free>;

std::string_view tagOf(const mpd_song& song, mpd_tag_type tag) {
  const char* value = mpd_song_get_tag(&song, tag, 0);
  return value != nullptr ? value : "";
}

bool endsWithFile(std::string_view address, std::string_view file) {
  return address == file ||
         (address.ends_with(file) && address[address.size() - file.size() - 1] == '/');
}

/// The server names files from its music folder on, and fronts encode them or not.
bool isSame(const mpd_song& playing, const MpdServer::Song& song) {
  const std::string_view file = mpd_song_get_uri(&playing);
  if (!song.address.empty())
    return endsWithFile(song.path, file) || endsWithFile(song.address, file);
  return !song.title.empty() && tagOf(playing, MPD_TAG_TITLE) == song.title &&
         std::string_view(song.artist).starts_with(tagOf(playing, MPD_TAG_ARTIST));
}

std::optional<int> stickerOf(mpd_connection& connection, const char* file) {
  std::optional<int> rating;
  if (!mpd_send_sticker_get(&connection, "song", file, ratingSticker)) return std::nullopt;
  while (mpd_pair* sticker = mpd_recv_sticker(&connection)) {
    int value = 0;
    const char* end = sticker->value + std::strlen(sticker->value);
    if (std::from_chars(sticker->value, end, value).ptr == end) rating = value;
    mpd_return_sticker(&connection, sticker);
  }
  return mpd_response_finish(&connection) ? rating : std::nullopt;
}

class LibmpdclientServer final : public MpdServer {
 public:
  Answer rate(const Song& song, int rating) override {
    const Connection connection(mpd_connection_new(nullptr, 0, patience));
    if (!connection || hasFailed(*connection)) return Answer::unreachable;
    const std::unique_ptr<mpd_song, Free> playing(mpd_run_current_song(connection.get()));
    if (hasFailed(*connection)) return failure(*connection);
    if (!playing || !isSame(*playing, song)) return Answer::otherSong;
    const int wanted = (rating + 5) / 10;
    const char* file = mpd_song_get_uri(playing.get());
    mpd_run_sticker_set(connection.get(), "song", file, ratingSticker,
                        std::to_string(wanted).c_str());
    if (hasFailed(*connection)) return failure(*connection);
    const auto found = stickerOf(*connection, file);
    if (hasFailed(*connection)) return failure(*connection);
    return found == wanted ? Answer::written : Answer::refused;
  }

 private:
  static bool hasFailed(const mpd_connection& connection) {
    return mpd_connection_get_error(&connection) != MPD_ERROR_SUCCESS;
  }
  static Answer failure(const mpd_connection& connection) {
    if (mpd_connection_get_error(&connection) != MPD_ERROR_SERVER) return Answer::unreachable;
    const bool isUnknown =
        mpd_connection_get_server_error(&connection) == MPD_SERVER_ERROR_UNKNOWN_CMD;
    return isUnknown ? Answer::noStickers : Answer::refused;
  }
};

}  // namespace

}  // namespace desktop

extern "C" __attribute__((visibility("default"))) desktop::MpdServer* virelune_mpd_server() {
  return std::make_unique<desktop::LibmpdclientServer>().release();
}
