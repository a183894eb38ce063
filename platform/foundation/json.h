// JSON (RFC 8259).
#pragma once

#include <optional>

#include "platform/foundation/data.h"
#include "platform/foundation/value.h"

namespace platform {

/// The value in a JSON text of any kind, a bare number or text included; none when the bytes are
/// not JSON in well-formed UTF-8, or nest more than 128 deep. A null is a null value; of members
/// with the same name the last one stands; whole numbers beyond 64 bits become floating-point.
std::optional<Value> jsonObjectWithData(const Data& data);

}  // namespace platform
