#include "platform/foundation/property_list.h"

#include <plist/plist.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <system_error>

#include "platform/foundation/binary_property_list.h"
#include "platform/foundation/file_manager.h"

namespace platform {

namespace {

struct FreeNode {
  void operator()(void* node) const { plist_free(node); }
};
using Node = std::unique_ptr<void, FreeNode>;

struct FreeText {
  void operator()(char* text) const { std::free(text); }  // NOLINT: the library allocates so
};
using LibraryText = std::unique_ptr<char, FreeText>;

/// Deeper lists than any settings file has are refused, so that none can exhaust the stack.
constexpr int deepestNesting = 64;

/// The list's epoch, 2001-01-01 00:00:00 UTC, in seconds since 1970.
constexpr double listEpoch = 978307200;

std::optional<Value> valueFromNode(plist_t node, int depth);

std::optional<Value> arrayFromNode(plist_t node, int depth) {
  Array array;
  for (std::uint32_t index = 0; index < plist_array_get_size(node); ++index) {
    auto element = valueFromNode(plist_array_get_item(node, index), depth + 1);
    if (!element) return std::nullopt;
    array.push_back(std::move(*element));
  }
  return Value(std::move(array));
}

std::optional<Value> dictionaryFromNode(plist_t node, int depth) {
  Dictionary dictionary;
  plist_dict_iter iterator = nullptr;
  plist_dict_new_iter(node, &iterator);
  const LibraryText iteratorOwner(static_cast<char*>(iterator));
  while (true) {
    char* key = nullptr;
    plist_t child = nullptr;
    plist_dict_next_item(node, iterator, &key, &child);
    const LibraryText keyOwner(key);
    if (child == nullptr) break;
    auto value = valueFromNode(child, depth + 1);
    if (!value || key == nullptr) return std::nullopt;
    dictionary.insert_or_assign(key, std::move(*value));
  }
  return Value(std::move(dictionary));
}

std::optional<Value> valueFromNode(plist_t node, int depth) {
  if (node == nullptr || depth > deepestNesting) return std::nullopt;
  switch (plist_get_node_type(node)) {
    case PLIST_BOOLEAN: {
      std::uint8_t flag = 0;
      plist_get_bool_val(node, &flag);
      return Value(flag != 0);
    }
    case PLIST_UINT: {
      std::uint64_t number = 0;
      plist_get_uint_val(node, &number);  // two's complement carries the negative ones
      return Value(static_cast<std::int64_t>(number));
    }
    case PLIST_REAL: {
      double number = 0;
      plist_get_real_val(node, &number);
      return Value(number);
    }
    case PLIST_STRING: {
      std::uint64_t length = 0;
      const char* text = plist_get_string_ptr(node, &length);
      if (text == nullptr) return std::nullopt;
      return Value(std::string(text, static_cast<std::size_t>(length)));
    }
    case PLIST_DATA: {
      char* bytes = nullptr;
      std::uint64_t length = 0;
      plist_get_data_val(node, &bytes, &length);
      const LibraryText owner(bytes);
      return Value(
          Data::fromText({bytes != nullptr ? bytes : "", static_cast<std::size_t>(length)}));
    }
    case PLIST_DATE: {
      std::int32_t seconds = 0;
      std::int32_t microseconds = 0;
      plist_get_date_val(node, &seconds, &microseconds);
      return Value(Date{listEpoch + seconds + microseconds / 1e6});
    }
    case PLIST_ARRAY:
      return arrayFromNode(node, depth);
    case PLIST_DICT:
      return dictionaryFromNode(node, depth);
    default:
      return Value();  // kinds without a counterpart here; they match no class
  }
}

/// XML lists are parsed by recursion in the library; count what is open before handing them over.
bool isNestedTooDeeply(std::string_view xml) {
  int depth = 0;
  for (std::size_t at = xml.find('<'); at != std::string_view::npos; at = xml.find('<', at + 1)) {
    const std::string_view rest = xml.substr(at + 1);
    if (rest.starts_with("array>") || rest.starts_with("dict>") || rest.starts_with("array ") ||
        rest.starts_with("dict ")) {
      if (++depth > deepestNesting) return true;
    } else if (rest.starts_with("/array") || rest.starts_with("/dict")) {
      --depth;
    }
  }
  return false;
}

/// The library ends the whole program over a key with a zero character: the byte, or a reference
/// such as "&#x0;".
bool hasZeroCharacter(std::string_view xml) {
  if (xml.find('\0') != std::string_view::npos) return true;
  for (std::size_t at = xml.find("&#"); at != std::string_view::npos; at = xml.find("&#", at + 2)) {
    std::string_view digits = xml.substr(at + 2);
    if (digits.starts_with('x') || digits.starts_with('X')) digits.remove_prefix(1);
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size()));
    if (digits.empty() || digits.front() == ';') return true;
  }
  return false;
}

bool isBinary(std::string_view bytes) { return bytes.starts_with("bplist00"); }

/// The list in some bytes; null when there is none.
Node nodeFromBytes(std::string_view bytes) {
  constexpr std::size_t longest = 64 * 1024 * 1024;
  if (bytes.empty() || bytes.size() > longest) return nullptr;
  const auto length = static_cast<std::uint32_t>(bytes.size());
  plist_t root = nullptr;
  if (isBinary(bytes)) {
    if (isSoundBinaryPropertyList(bytes, deepestNesting))
      plist_from_bin(bytes.data(), length, &root);
  } else if (!isNestedTooDeeply(bytes) && !hasZeroCharacter(bytes)) {
    plist_from_xml(bytes.data(), length, &root);
  }
  return Node(root);
}

constexpr std::uintmax_t largestFile = 1024 * 1024;

}  // namespace

std::optional<Value> propertyListFromData(const Data& data) {
  const Node root = nodeFromBytes(data.view());
  return valueFromNode(root.get(), 0);
}

std::optional<Dictionary> dictionaryWithContentsOfFile(const std::string& path) {
  const auto bytes = dataWithContentsOfFile(path, largestFile);
  const auto value = bytes ? propertyListFromData(*bytes) : std::nullopt;
  return value ? value->as<Dictionary>() : std::nullopt;
}

bool setEntriesOfFile(const std::string& path,
                      const std::map<std::string, std::variant<bool, std::int64_t>>& entries) {
  std::error_code unknown;
  const bool isThere =
      std::filesystem::status(path, unknown).type() != std::filesystem::file_type::not_found;
  const auto bytes = isThere ? dataWithContentsOfFile(path, largestFile) : std::nullopt;
  if (isThere && !bytes) return false;
  const Node root = bytes ? nodeFromBytes(bytes->view()) : Node(plist_new_dict());
  if (!root || plist_get_node_type(root.get()) != PLIST_DICT) return false;
  for (const auto& [key, value] : entries) {
    const bool* truth = std::get_if<bool>(&value);
    plist_dict_set_item(
        root.get(), key.c_str(),
        truth != nullptr
            ? plist_new_bool(*truth ? 1 : 0)
            : plist_new_uint(static_cast<std::uint64_t>(std::get<std::int64_t>(value))));
  }
  char* text = nullptr;
  std::uint32_t length = 0;
  if (bytes && isBinary(bytes->view())) {
    plist_to_bin(root.get(), &text, &length);
  } else {
    plist_to_xml(root.get(), &text, &length);
  }
  const LibraryText owner(text);
  return text != nullptr && writeToFileAtomically(path, {text, length});
}

}  // namespace platform
