#include "panels/link.h"

#include "extensions/collections.h"
#include "extensions/store_search.h"
#include "platform/application/workspace.h"
#include "platform/foundation/json.h"
#include "platform/foundation/text.h"
#include "platform/foundation/url_components.h"
#include "platform/network/url_session.h"
#include "radio/url_connection.h"

using platform::Array;
using platform::Dictionary;
using platform::NSURLComponents;
using platform::NSURLQueryItem;
using platform::NSWorkspace;

namespace virelune {
namespace {

constexpr platform::TimeInterval searchTimeout = 3;
constexpr const char* storeScheme = "itms";
constexpr const char* affiliateItem = "at";
constexpr const char* affiliateToken = "4p8d27M";

}  // namespace

bool VLLink::openStoreForArtist(const std::string& artist) {
  const auto address = iTMSwebAddressForArtist(artist);
  if (!address) return false;
  auto components = NSURLComponents::componentsWithString(*address);
  if (!components) return false;
  auto items = components->percentEncodedQueryItems().value_or(std::vector<NSURLQueryItem>());
  items.push_back({affiliateItem, affiliateToken});
  components->setPercentEncodedQueryItems(items);
  components->setScheme(storeScheme);
  const auto url = components->url();
  auto* workspace = NSWorkspace::sharedWorkspace();
  if (!url || workspace == nullptr) return false;
  workspace->openURL(*url);
  return true;
}

// The search

std::optional<std::string> VLLink::iTMSwebAddressForArtist(const std::string& artist) {
  const auto items = iTMSitemsForArtist(artist);
  return items ? iTMSfindWebAddressForArtist_inItems(artist, *items) : std::nullopt;
}

std::optional<Array> VLLink::iTMSitemsForArtist(const std::string& artist) {
  auto items = vl_objectForKey_withClass<Array>(iTMSinfoForArtist(artist), "results");
  return items && !items->empty() ? std::move(items) : std::nullopt;
}

std::optional<Dictionary> VLLink::iTMSinfoForArtist(const std::string& artist) {
  if (artist.empty()) return std::nullopt;
  const auto url = storeSearchURL("term=" + storeSearchTerm(artist) +
                                  "&media=music&attribute=artistTerm&entity=musicArtist");
  if (!url) return std::nullopt;
  platform::NSMutableURLRequest request(*url);
  request.setCachePolicy(platform::NSURLRequestReloadIgnoringLocalAndRemoteCacheData);
  request.setTimeoutInterval(searchTimeout);
  const auto body = vl_sendSynchronousRequest(request);
  if (!body) return std::nullopt;
  const auto reply = platform::jsonObjectWithData(*body);
  auto info = reply ? reply->as<Dictionary>() : std::nullopt;
  return info && !info->empty() ? std::move(info) : std::nullopt;
}

// Matching

std::optional<std::string> VLLink::iTMSfindWebAddressForArtist_inItems(const std::string& artist,
                                                                       const Array& items) {
  auto address = iTMSfindValueForArtist_inItems_withKey(artist, items, "artistLinkUrl");
  return address ? address : iTMSfindValueForArtist_inItems_withKey(artist, items, "artistViewUrl");
}

std::optional<std::string> VLLink::iTMSfindValueForArtist_inItems_withKey(const std::string& artist,
                                                                          const Array& items,
                                                                          const std::string& key) {
  auto value =
      vl_objectForKey_withClass<std::string>(iTMSfindInfoForArtist_inItems(artist, items), key);
  return value && !value->empty() ? std::move(value) : std::nullopt;
}

const Dictionary* VLLink::iTMSfindInfoForArtist_inItems(const std::string& artist,
                                                        const Array& items) {
  if (artist.empty()) return nullptr;
  for (const platform::Value& item : items) {
    const auto* entry = item.get<Dictionary>();
    const auto name = vl_objectForKey_withClass<std::string>(entry, "artistName");
    if (name && !name->empty() && platform::caseInsensitiveEqual(*name, artist)) return entry;
  }
  return nullptr;
}

}  // namespace virelune
