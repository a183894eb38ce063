#include "desktop/remote/status.h"

#include <QtCore/QString>

#include "platform/application/player_dictionary.h"

namespace desktop {

namespace {

constexpr double ratingPerStar = 20;

QString nameOf(platform::FourCharCode state) {
  if (state == platform::player::statePlaying) return QStringLiteral("playing");
  if (state == platform::player::statePaused) return QStringLiteral("paused");
  return QStringLiteral("stopped");
}

void add(QVariantMap& status, const char* key, const std::string& text) {
  if (!text.empty()) status.insert(QLatin1String(key), QString::fromStdString(text));
}

void add(QVariantMap& status, const char* key, const char* raterKey,
         const platform::ScriptablePlayer::Rating& rating) {
  status.insert(QLatin1String(key), static_cast<double>(rating.value) / ratingPerStar);
  if (rating.kind == platform::player::ratedByUser) add(status, raterKey, "user");
  if (rating.kind == platform::player::ratingComputed) add(status, raterKey, "player");
}

}  // namespace

QVariantMap statusOf(const std::optional<PlayerReport>& report) {
  QVariantMap status;
  if (!report) return status;
  add(status, "player", report->player);
  add(status, "identity", report->identity);
  status.insert(QStringLiteral("state"), nameOf(report->state));
  if (report->volume) status.insert(QStringLiteral("volume"), *report->volume);
  if (!report->track) return status;
  add(status, "title", report->track->name);
  add(status, "artist", report->track->artist);
  add(status, "album", report->track->album);
  add(status, "albumArtist", report->track->albumArtist);
  add(status, "address", report->address);
  add(status, "artwork", report->artworkAddress);
  if (report->track->duration > 0) {
    status.insert(QStringLiteral("length"), report->track->duration);
  }
  status.insert(QStringLiteral("position"), report->position);
  status.insert(QStringLiteral("stream"), report->track->isStream);
  add(status, "rating", "ratedBy", report->rating);
  add(status, "albumRating", "albumRatedBy", report->albumRating);
  status.insert(QStringLiteral("loved"), report->isLoved);
  status.insert(QStringLiteral("albumLoved"), report->isAlbumLoved);
  add(status, "library", report->library);
  return status;
}

void addProgramme(QVariantMap& status, const std::optional<virelune::LiveProgramme>& programme) {
  if (!programme || !status.value(QStringLiteral("stream")).toBool()) return;
  add(status, "programme", programme->title);
  add(status, "programmeArtist", programme->artist);
  add(status, "programmeAlbum", programme->album);
}

}  // namespace desktop
