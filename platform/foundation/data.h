// Immutable bytes, shared by reference so that they pass between threads and layers for free.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// A byte buffer that never changes. Copies share the bytes.
class Data {
 public:
  Data() = default;
  explicit Data(std::vector<std::uint8_t> bytes)
      : bytes_(std::make_shared<const std::vector<std::uint8_t>>(std::move(bytes))) {}
  static Data fromText(std::string_view text) {
    return Data(std::vector<std::uint8_t>(text.begin(), text.end()));
  }

  std::size_t length() const { return bytes_ ? bytes_->size() : 0; }
  bool isEmpty() const { return length() == 0; }
  std::span<const std::uint8_t> bytes() const {
    return bytes_ ? std::span<const std::uint8_t>(*bytes_) : std::span<const std::uint8_t>();
  }
  std::string_view view() const {
    const auto all = bytes();
    return {reinterpret_cast<const char*>(all.data()), all.size()};
  }

  /// True when both share one buffer; a cheap hint that nothing changed.
  bool isIdenticalTo(const Data& other) const { return bytes_ == other.bytes_; }
  bool operator==(const Data& other) const {
    return bytes_ == other.bytes_ || view() == other.view();
  }

 private:
  std::shared_ptr<const std::vector<std::uint8_t>> bytes_;
};

}  // namespace platform
