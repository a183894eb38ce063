#include "extensions/store_search.h"

#include <algorithm>

#include "extensions/application_paths.h"
#include "extensions/collections.h"

namespace virelune {
namespace {

constexpr const char* hostEntry = "VLStoreSearchHost";
constexpr const char* defaultHost = "itunes.apple.com";

std::string storeSearchHost() {
  const auto host = vl_objectForKey_withClass<std::string>(vl_info(), hostEntry);
  return host && !host->empty() ? *host : defaultHost;
}

}  // namespace

std::string storeSearchTerm(std::string_view text) {
  std::string term(text);
  std::replace(term.begin(), term.end(), ' ', '+');
  return platform::percentEncodedForQuery(term);
}

std::optional<platform::URL> storeSearchURL(std::string_view query) {
  return platform::URL::fromText("https://" + storeSearchHost() + "/search?" + std::string(query));
}

}  // namespace virelune
