#include "platform/foundation/value.h"

#include <cmath>
#include <limits>

#include "platform/foundation/image.h"

namespace platform {

bool Number::boolValue() const {
  return std::visit([](auto value) { return value != 0; }, value_);
}

std::int64_t Number::integerValue() const {
  const auto* real = std::get_if<double>(&value_);
  if (real == nullptr) {
    return std::visit([](auto value) { return static_cast<std::int64_t>(value); }, value_);
  }
  if (std::isnan(*real)) return 0;
  // 2^63 is the first double beyond the range; -2^63 is still inside it.
  constexpr double limit = 9223372036854775808.0;
  if (*real >= limit) return std::numeric_limits<std::int64_t>::max();
  if (*real < -limit) return std::numeric_limits<std::int64_t>::min();
  return static_cast<std::int64_t>(*real);
}

double Number::doubleValue() const {
  return std::visit([](auto value) { return static_cast<double>(value); }, value_);
}

Value::Value(std::shared_ptr<NSImage> value) {
  if (value) storage_ = std::move(value);
}

Value::Value(Array value) : storage_(std::make_shared<const Array>(std::move(value))) {}

Value::Value(Dictionary value) : storage_(std::make_shared<const Dictionary>(std::move(value))) {}

std::optional<Number> Value::number() const {
  if (const auto* flag = std::get_if<bool>(&storage_)) return Number(*flag);
  if (const auto* integer = std::get_if<std::int64_t>(&storage_)) return Number(*integer);
  if (const auto* real = std::get_if<double>(&storage_)) return Number(*real);
  return std::nullopt;
}

bool Value::operator==(const Value& other) const {
  const auto mine = number();
  const auto theirs = other.number();
  if (mine && theirs) {
    const bool exact = !std::holds_alternative<double>(storage_) &&
                       !std::holds_alternative<double>(other.storage_);
    return exact ? mine->integerValue() == theirs->integerValue()
                 : mine->doubleValue() == theirs->doubleValue();
  }
  if (const auto* array = get<Array>()) {
    const auto* others = other.get<Array>();
    return others != nullptr && *array == *others;
  }
  if (const auto* dictionary = get<Dictionary>()) {
    const auto* others = other.get<Dictionary>();
    return others != nullptr && *dictionary == *others;
  }
  return storage_ == other.storage_;
}

}  // namespace platform
