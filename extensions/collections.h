// Typed look-ups in arrays and dictionaries: they answer none instead of failing, whatever the
// collection holds and whether or not there is one.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "platform/application/workspace.h"
#include "platform/foundation/value.h"

namespace virelune {

/// The collection that a look-up reads, or none: made from a reference, an optional or a pointer.
/// It lives no longer than the call that it is passed to.
template <class Collection>
class Receiver {
 public:
  Receiver(const Collection& collection) : collection_(&collection) {}  // NOLINT
  Receiver(const Collection* collection) : collection_(collection) {}   // NOLINT
  Receiver(const std::optional<Collection>& collection)                 // NOLINT
      : collection_(collection ? &*collection : nullptr) {}

  bool isEmpty() const { return collection_ == nullptr || collection_->empty(); }
  const Collection& operator*() const { return *collection_; }

 private:
  const Collection* collection_;
};

// Arrays of values

/// The element at an index; none when the index lies outside the array.
std::optional<platform::Value> vl_objectAtIndex(Receiver<platform::Array> array,
                                                std::int64_t index);

/// The element at an index if it is a T; else none.
template <class T>
std::optional<T> vl_objectAtIndex_withClass(Receiver<platform::Array> array, std::int64_t index) {
  const auto value = vl_objectAtIndex(array, index);
  return value ? value->template as<T>() : std::nullopt;
}

/// The first element that is a T, in array order; none when no element is.
template <class T>
std::optional<T> vl_firstObjectWithClass(Receiver<platform::Array> array) {
  if (array.isEmpty()) return std::nullopt;
  for (const platform::Value& value : *array) {
    if (auto object = value.as<T>()) return object;
  }
  return std::nullopt;
}

// Arrays of objects

/// The object at an index; null when the index lies outside the array.
std::shared_ptr<platform::NSObject> vl_objectAtIndex(Receiver<platform::ObjectArray> array,
                                                     std::int64_t index);

/// The object at an index if it is a T or of a class derived from it; else null.
template <class T>
std::shared_ptr<T> vl_objectAtIndex_withClass(Receiver<platform::ObjectArray> array,
                                              std::int64_t index) {
  return std::dynamic_pointer_cast<T>(vl_objectAtIndex(array, index));
}

/// The first object that is a T or of a class derived from it, in array order; null when none is.
template <class T>
std::shared_ptr<T> vl_firstObjectWithClass(Receiver<platform::ObjectArray> array) {
  if (array.isEmpty()) return nullptr;
  for (const auto& element : *array) {
    if (auto object = std::dynamic_pointer_cast<T>(element)) return object;
  }
  return nullptr;
}

// Dictionaries

/// The value of a key, without copying it; null when the key is empty or nothing is stored.
const platform::Value* vl_valueForKey(Receiver<platform::Dictionary> dictionary,
                                      std::string_view key);

/// The value of a key if it is a T; else none.
template <class T>
std::optional<T> vl_objectForKey_withClass(Receiver<platform::Dictionary> dictionary,
                                           std::string_view key) {
  const platform::Value* value = vl_valueForKey(dictionary, key);
  return value != nullptr ? value->template as<T>() : std::nullopt;
}

/// True when a value is stored for the key.
bool vl_hasObjectForKey(Receiver<platform::Dictionary> dictionary, std::string_view key);

/// Stores a value unless an equal one is there; a null value and an empty text remove the entry.
/// True when the dictionary has changed; an empty key changes nothing.
bool vl_setObject_forKey(platform::Dictionary& dictionary, const platform::Value& value,
                         std::string_view key);

template <class T>
bool vl_setObject_forKey(platform::Dictionary& dictionary, const std::optional<T>& value,
                         std::string_view key) {
  return vl_setObject_forKey(dictionary, value ? platform::Value(*value) : platform::Value(), key);
}

}  // namespace virelune
