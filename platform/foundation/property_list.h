// Property lists, in XML and in binary form.
#pragma once

#include <optional>
#include <string>

#include "platform/foundation/data.h"
#include "platform/foundation/value.h"

namespace platform {

/// The value in a property list of either form; none when the bytes are not one.
std::optional<Value> propertyListFromData(const Data& data);

/// The dictionary in a property-list file; none when the file cannot be read, is larger than a
/// settings file can be (1 MiB), or holds anything else.
std::optional<Dictionary> dictionaryWithContentsOfFile(const std::string& path);

}  // namespace platform
