// The constants that the widget's modules share.
#pragma once

#include <cstdint>

#include "platform/application/player_dictionary.h"
#include "platform/application/system_events_dictionary.h"

namespace virelune {

// Bundle identifiers.
inline constexpr const char* VLBundleIdentifier_iTunes = platform::player::bundleIdentifier;
inline constexpr const char* VLBundleIdentifier_SystemEvents =
    platform::system_events::bundleIdentifier;
inline constexpr const char* VLBundleIdentifier_Virelune = "org.virelune.Virelune";

/// The player's own change notification, on the distributed notification centre.
inline constexpr const char* VLDistributedNotificationName_PlayerInfo =
    platform::player::infoNotification;

/// The live station, as the player names its stream.
inline constexpr const char* VLIdentifierBeats1 = "Beats 1";

/// Posted by the live radio loader whenever its track information has changed.
inline constexpr const char* VLBeats1InfoLoaderNotificationName_Update =
    "VLBeats1InfoLoaderNotificationName_Update";

// Who set a rating.
inline constexpr std::int64_t VLRatingTypeUnknown = 0;
inline constexpr std::int64_t VLRatingTypeUser = 1;
inline constexpr std::int64_t VLRatingTypeComputed = 2;

// What the live radio loader is loading.
inline constexpr std::int64_t VLBeats1InfoLoadingNone = 0;
inline constexpr std::int64_t VLBeats1InfoLoadingPlaylist = 1;
inline constexpr std::int64_t VLBeats1InfoLoadingTrack = 2;
inline constexpr std::int64_t VLBeats1InfoLoadingArtwork = 3;

// Names of images in the widget's bundle.
inline constexpr const char* VLImageArtworkBackground = "VLImageArtworkBackground";
inline constexpr const char* VLImageArtworkBeats1 = "VLImageArtworkBeats1";
inline constexpr const char* VLImageControllerNext = "VLImageControllerNext";
inline constexpr const char* VLImageControllerPrevious = "VLImageControllerPrevious";
inline constexpr const char* VLImageControllerPlay = "VLImageControllerPlay";
inline constexpr const char* VLImageControllerPause = "VLImageControllerPause";
inline constexpr const char* VLImageLoveOn = "VLImageLoveOn";
inline constexpr const char* VLImageLoveOff = "VLImageLoveOff";
inline constexpr const char* VLImageRatingStarFull = "VLImageRatingStarFull";
inline constexpr const char* VLImageRatingStarHalf = "VLImageRatingStarHalf";
inline constexpr const char* VLImageRatingStarDot = "VLImageRatingStarDot";
inline constexpr const char* VLImageRatingStarEmpty = "VLImageRatingStarEmpty";

}  // namespace virelune
