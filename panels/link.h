// Links into the online music store.
#pragma once

#include <optional>
#include <string>

#include "platform/foundation/value.h"

namespace virelune {

/// Finds artists' pages with the store's search service and opens them in the player. All
/// operations answer false or none when any step fails. Any thread; a search blocks for up to
/// three seconds, so callers are on a worker thread.
class VLLink {
 public:
  VLLink() = delete;

  /// Opens the artist's page; true once the workspace was asked to.
  static bool openStoreForArtist(const std::string& artist);

  // The search

  /// The address of the artist's page.
  static std::optional<std::string> iTMSwebAddressForArtist(const std::string& artist);
  /// The "results" of the reply; not empty.
  static std::optional<platform::Array> iTMSitemsForArtist(const std::string& artist);
  /// The whole reply; not empty.
  static std::optional<platform::Dictionary> iTMSinfoForArtist(const std::string& artist);

  // Matching, in the "results" of a reply

  /// "artistLinkUrl", else "artistViewUrl" of the matching entry.
  static std::optional<std::string> iTMSfindWebAddressForArtist_inItems(
      const std::string& artist, const platform::Array& items);
  /// The matching entry's text for a key; none when it is missing or empty.
  static std::optional<std::string> iTMSfindValueForArtist_inItems_withKey(
      const std::string& artist, const platform::Array& items, const std::string& key);
  /// The first entry whose "artistName" is the artist's, compared without regard to case; null
  /// when there is none. The entry lies in the array.
  static const platform::Dictionary* iTMSfindInfoForArtist_inItems(const std::string& artist,
                                                                   const platform::Array& items);
};

}  // namespace virelune
