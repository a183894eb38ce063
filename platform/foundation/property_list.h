// Property lists, in XML and in binary form.
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <variant>

#include "platform/foundation/data.h"
#include "platform/foundation/value.h"

namespace platform {

/// The value in a property list of either form; none when the bytes are not one.
std::optional<Value> propertyListFromData(const Data& data);

/// The dictionary in a property-list file; none when the file cannot be read, is larger than a
/// settings file can be (1 MiB), or holds anything else.
std::optional<Dictionary> dictionaryWithContentsOfFile(const std::string& path);

/// Sets truth values and whole numbers at the top of a property-list file, all at once; what else
/// is in it stays, and so does its form. A file that is missing is made, in XML. False, with
/// nothing changed, when there is one that cannot be read or holds no dictionary, or when it cannot
/// be written.
bool setEntriesOfFile(const std::string& path,
                      const std::map<std::string, std::variant<bool, std::int64_t>>& entries);

}  // namespace platform
