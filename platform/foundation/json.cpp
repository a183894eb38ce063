#include "platform/foundation/json.h"

#include <limits>
#include <nlohmann/json.hpp>
#include <variant>

namespace platform {
namespace {

/// A deeper reply is refused, since letting go of nested values takes stack.
constexpr std::size_t deepestNesting = 128;

/// Builds a value from the parser's events. Each answers whether to go on.
class Builder {
 public:
  bool null() { return add(Value()); }
  bool boolean(bool value) { return add(value); }
  bool number_integer(std::int64_t value) { return add(value); }
  bool number_unsigned(std::uint64_t value) {
    if (std::cmp_less_equal(value, std::numeric_limits<std::int64_t>::max())) return add(value);
    return add(static_cast<double>(value));
  }
  bool number_float(double value, const std::string&) { return add(value); }
  bool string(std::string& text) { return add(std::move(text)); }
  bool binary(nlohmann::json::binary_t&) { return false; }

  bool start_object(std::size_t) { return open(Dictionary()); }
  bool key(std::string& name) {
    containers_.back().key = std::move(name);
    return true;
  }
  bool end_object() { return close<Dictionary>(); }
  bool start_array(std::size_t) { return open(Array()); }
  bool end_array() { return close<Array>(); }
  bool parse_error(std::size_t, const std::string&, const nlohmann::json::exception&) {
    return false;
  }

  std::optional<Value> take() { return std::move(root_); }

 private:
  struct Container {
    std::variant<Array, Dictionary> elements;
    std::string key;  // of the member that comes next
  };

  bool open(std::variant<Array, Dictionary> empty) {
    if (containers_.size() == deepestNesting) return false;
    containers_.push_back({std::move(empty), {}});
    return true;
  }
  template <class T>
  bool close() {
    Value finished(std::get<T>(std::move(containers_.back().elements)));
    containers_.pop_back();
    return add(std::move(finished));
  }
  bool add(Value value) {
    if (containers_.empty()) {
      root_ = std::move(value);
    } else if (auto* array = std::get_if<Array>(&containers_.back().elements)) {
      array->push_back(std::move(value));
    } else {
      auto& members = std::get<Dictionary>(containers_.back().elements);
      members.insert_or_assign(std::move(containers_.back().key), std::move(value));
    }
    return true;
  }

  std::vector<Container> containers_;
  std::optional<Value> root_;
};

}  // namespace

std::optional<Value> jsonObjectWithData(const Data& data) {
  Builder builder;
  const std::string_view text = data.view();
  // The parser takes a zero byte for the end; in JSON there is none.
  if (text.find('\0') != std::string_view::npos) return std::nullopt;
  if (!nlohmann::json::sax_parse(text.begin(), text.end(), &builder)) return std::nullopt;
  return builder.take();
}

}  // namespace platform
