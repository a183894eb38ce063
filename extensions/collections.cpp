#include "extensions/collections.h"

#include <string>

using platform::Array;
using platform::Dictionary;
using platform::ObjectArray;
using platform::Value;

namespace virelune {
namespace {

template <class Collection>
bool contains(Receiver<Collection> array, std::int64_t index) {
  return !array.isEmpty() && index >= 0 && static_cast<std::size_t>(index) < (*array).size();
}

bool isEmptyText(const Value& value) {
  const auto* text = value.get<std::string>();
  return text != nullptr && text->empty();
}

}  // namespace

std::optional<Value> vl_objectAtIndex(Receiver<Array> array, std::int64_t index) {
  if (!contains(array, index)) return std::nullopt;
  return (*array)[static_cast<std::size_t>(index)];
}

std::shared_ptr<platform::NSObject> vl_objectAtIndex(Receiver<ObjectArray> array,
                                                     std::int64_t index) {
  if (!contains(array, index)) return nullptr;
  return (*array)[static_cast<std::size_t>(index)];
}

const Value* vl_valueForKey(Receiver<Dictionary> dictionary, std::string_view key) {
  if (key.empty() || dictionary.isEmpty()) return nullptr;
  const auto found = (*dictionary).find(key);
  return found != (*dictionary).end() ? &found->second : nullptr;
}

bool vl_hasObjectForKey(Receiver<Dictionary> dictionary, std::string_view key) {
  return vl_valueForKey(dictionary, key) != nullptr;
}

bool vl_setObject_forKey(Dictionary& dictionary, const Value& value, std::string_view key) {
  if (key.empty()) return false;
  const auto found = dictionary.find(key);
  const bool isStored = found != dictionary.end();
  if (value.isNull() || isEmptyText(value)) {
    if (!isStored) return false;
    dictionary.erase(found);
    return true;
  }
  if (!isStored) {
    dictionary.emplace(key, value);
    return true;
  }
  if (value == found->second) return false;
  found->second = value;
  return true;
}

}  // namespace virelune
