// Localised texts of the widget's string tables.
#pragma once

#include <optional>
#include <string>

#include "platform/application/bundle.h"

namespace virelune {

/// The text of a key in a string table of the main bundle, the key itself when there is no entry.
/// Without a table the bundle's default one is read. None without a main bundle and for a text
/// that would be empty.
std::optional<std::string> vl_localizedString(const std::string& key);
std::optional<std::string> vl_localizedString_fromTable(const std::string& key,
                                                        const std::optional<std::string>& table);

/// The same in another bundle; without one, in the main bundle.
std::optional<std::string> vl_localizedString_fromTable_inBundle(
    const std::string& key, const std::optional<std::string>& table, platform::NSBundle* bundle);

}  // namespace virelune
