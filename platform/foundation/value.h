// The one value type of dictionaries from property lists, JSON, notifications and scripting.
#pragma once

#include <concepts>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <type_traits>
#include <variant>
#include <vector>

#include "platform/foundation/color.h"
#include "platform/foundation/data.h"
#include "platform/foundation/date.h"
#include "platform/foundation/font.h"

namespace platform {

class NSImage;
class Value;

using Array = std::vector<Value>;
using Dictionary = std::map<std::string, Value, std::less<>>;

/// A number of any kind; a boolean is a number too.
class Number {
 public:
  explicit Number(bool value) : value_(value) {}
  explicit Number(std::int64_t value) : value_(value) {}
  explicit Number(double value) : value_(value) {}

  bool boolValue() const;
  std::int64_t integerValue() const;  ///< fractions cut, limited to the range; 0 for not-a-number
  double doubleValue() const;

 private:
  std::variant<bool, std::int64_t, double> value_;
};

/// A value of a dictionary or an array. Arrays and dictionaries are shared and immutable once
/// wrapped, so copying is cheap. A default value is null and is of no class.
class Value {
 public:
  Value() = default;
  Value(bool value) : storage_(value) {}  // NOLINT: values read as literals
  template <class T>
  requires(std::integral<T> && !std::same_as<T, bool>) Value(T value)
      : storage_(static_cast<std::int64_t>(value)) {}         // NOLINT
  Value(double value) : storage_(value) {}                    // NOLINT
  Value(std::string value) : storage_(std::move(value)) {}    // NOLINT
  Value(const char* value) : storage_(std::string(value)) {}  // NOLINT
  Value(Date value) : storage_(value) {}                      // NOLINT
  Value(Data value) : storage_(std::move(value)) {}           // NOLINT
  Value(NSColor value) : storage_(value) {}                   // NOLINT
  Value(NSFont value) : storage_(value) {}                    // NOLINT
  Value(NSParagraphStyle value) : storage_(value) {}          // NOLINT
  Value(std::shared_ptr<NSImage> value);                      // NOLINT: null becomes null
  Value(Array value);                                         // NOLINT
  Value(Dictionary value);                                    // NOLINT

  bool isNull() const { return std::holds_alternative<std::monostate>(storage_); }

  /// The value as a T (std::string, Number, bool, Date, Data, std::shared_ptr<NSImage>, NSColor,
  /// NSFont, NSParagraphStyle, Array, Dictionary); none when it is of another class.
  template <class T>
  std::optional<T> as() const {
    if constexpr (std::same_as<T, Number>) {
      return number();
    } else if constexpr (std::same_as<T, Array> || std::same_as<T, Dictionary>) {
      const T* found = get<T>();
      return found != nullptr ? std::optional<T>(*found) : std::nullopt;
    } else {
      const T* found = std::get_if<T>(&storage_);
      return found != nullptr ? std::optional<T>(*found) : std::nullopt;
    }
  }

  /// A look at the array, dictionary or text inside without copying; null when of another class.
  template <class T>
  const T* get() const {
    if constexpr (std::same_as<T, Array> || std::same_as<T, Dictionary>) {
      const auto* held = std::get_if<std::shared_ptr<const T>>(&storage_);
      return held != nullptr ? held->get() : nullptr;
    } else {
      return std::get_if<T>(&storage_);
    }
  }

  /// Numbers are equal when they stand for the same amount, whatever their kind.
  bool operator==(const Value& other) const;

 private:
  std::optional<Number> number() const;

  std::variant<std::monostate, bool, std::int64_t, double, std::string, Date, Data, NSColor, NSFont,
               NSParagraphStyle, std::shared_ptr<NSImage>, std::shared_ptr<const Array>,
               std::shared_ptr<const Dictionary>>
      storage_;
};

}  // namespace platform
