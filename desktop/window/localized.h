// The program's own texts.
#pragma once

#include <string>

namespace desktop {

/// The text of a key in the bundle's string table, in the user's language; the key where there is
/// none.
std::string localizedString(const std::string& key);

}  // namespace desktop
