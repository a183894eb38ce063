// The scripting dictionary of the music player: every word that the widget, the players behind it
// and their tests use to talk about it.
#pragma once

#include "platform/application/scripting.h"

namespace platform::player {

inline constexpr const char* bundleIdentifier = "com.apple.iTunes";

/// The player's own change notification, on the distributed notification centre.
inline constexpr const char* infoNotification = "com.apple.iTunes.playerInfo";

// Classes
inline constexpr FourCharCode applicationClass = code("capp");
inline constexpr FourCharCode itemClass = code("cobj");
inline constexpr FourCharCode trackClass = code("cTrk");
inline constexpr FourCharCode fileTrackClass = code("cFlT");
inline constexpr FourCharCode urlTrackClass = code("cURT");
inline constexpr FourCharCode artworkClass = code("cArt");

// Properties of the application
inline constexpr FourCharCode currentTrack = code("pTrk");
inline constexpr FourCharCode playerState = code("pPlS");
inline constexpr FourCharCode playerPosition = code("pPos");

// Properties of a track
inline constexpr FourCharCode name = code("pnam");
inline constexpr FourCharCode artist = code("pArt");
inline constexpr FourCharCode album = code("pAlb");
inline constexpr FourCharCode albumArtist = code("pAlA");
inline constexpr FourCharCode duration = code("pDur");
inline constexpr FourCharCode time = code("pTim");
inline constexpr FourCharCode rating = code("pRte");
inline constexpr FourCharCode ratingKind = code("pRtk");
inline constexpr FourCharCode loved = code("pLov");
inline constexpr FourCharCode albumRating = code("pAlR");
inline constexpr FourCharCode albumRatingKind = code("pARk");
inline constexpr FourCharCode albumLoved = code("pALv");

// Properties of a piece of artwork
inline constexpr FourCharCode rawData = code("pRaw");

// States; 0 means that the state could not be read
inline constexpr FourCharCode stateStopped = code("kPSS");
inline constexpr FourCharCode statePlaying = code("kPSP");
inline constexpr FourCharCode statePaused = code("kPSp");

// Who rated; 0 means that nobody did
inline constexpr FourCharCode ratedByUser = code("kRtU");
inline constexpr FourCharCode ratingComputed = code("kRtC");

// Commands: their class, and the event of each
inline constexpr FourCharCode commandClass = code("hook");
inline constexpr FourCharCode playPause = code("PlPs");
inline constexpr FourCharCode nextTrack = code("Next");
inline constexpr FourCharCode previousTrack = code("Prev");
inline constexpr FourCharCode reveal = code("Revl");

}  // namespace platform::player
