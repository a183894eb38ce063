// The store's public search service: where it is and how it is asked.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/foundation/url.h"

namespace virelune {

/// A text as the search service takes it in a query: blanks are "+", and what may not stand in a
/// query is percent-encoded. "&", "=" and "+" stay as they are.
std::string storeSearchTerm(std::string_view text);

/// The address of a search over https. The host, with a port or without, is the entry
/// "VLStoreSearchHost" of the information dictionary, else the music store's own. None when the
/// host or the query do not make an address. Any thread.
std::optional<platform::URL> storeSearchURL(std::string_view query);

}  // namespace virelune
