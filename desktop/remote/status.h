// What plays, as scripts and other programs are told.
#pragma once

#include <QtCore/QVariantMap>
#include <optional>

#include "desktop/player/controls.h"
#include "widget/live_programme.h"

namespace desktop {

/// Empty without a player. Keys that say nothing are left out; else they are:
/// - of the player: "player", "identity", "state" ("playing", "paused", "stopped"), "volume" (d, 1
///   is full);
/// - of its track: "title", "artist", "album", "albumArtist", "address", "artwork" (an address),
///   "length" and "position" (d, seconds), "stream" (b);
/// - of the live station's programme, where a card shows it: "programme" (its title),
///   "programmeArtist", "programmeAlbum";
/// - of its marks: "rating" and "albumRating" (d, stars), "ratedBy" and "albumRatedBy" ("user" or
///   "player"), "loved" and "albumLoved" (b), "library" (what became of the rating in the player's
///   library: "written", "pending", "refused", "none").
QVariantMap statusOf(const std::optional<PlayerReport>& report);

/// Nothing is added where no station plays.
void addProgramme(QVariantMap& status, const std::optional<virelune::LiveProgramme>& programme);

}  // namespace desktop
