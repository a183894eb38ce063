// Values that a Python program has stored, as far as they are texts, numbers, lists and
// dictionaries (pickle protocols 0 to 5, https://docs.python.org/3/library/pickletools.html).
// Nothing that is read is ever run.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <variant>

namespace desktop {

/// The members of a dictionary that are texts (byte strings as well) or numbers.
using PickledMembers = std::map<std::string, std::variant<std::string, double>>;

/// Hands out the dictionaries in the list that the bytes stand for, objects made of one as well.
/// False when the bytes are no such list; nothing is handed out then.
bool readPickledDictionaries(std::string_view bytes,
                             const std::function<void(const PickledMembers&)>& visit);

}  // namespace desktop
