#include "platform/foundation/binary_property_list.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace platform {
namespace {

/// Walks a list once, from its root, as the library will.
class Reader {
 public:
  Reader(std::string_view bytes, int deepest) : bytes_(bytes), deepest_(deepest) {}

  bool isSound() { return readTrailer() && isSound(root_, 0); }

 private:
  /// The big-endian number at an offset; none when it reaches past the end.
  std::optional<std::uint64_t> number(std::uint64_t offset, std::uint64_t width) const {
    if (width == 0 || width > 8 || offset > bytes_.size() || width > bytes_.size() - offset) {
      return std::nullopt;
    }
    std::uint64_t value = 0;
    for (const char byte : bytes_.substr(offset, width)) {
      value = value << 8U | static_cast<unsigned char>(byte);
    }
    return value;
  }

  /// The last 32 bytes tell where the table of objects is.
  bool readTrailer() {
    constexpr std::uint64_t length = 32;
    if (bytes_.size() < length) return false;
    const std::uint64_t start = bytes_.size() - length;
    offsetWidth_ = *number(start + 6, 1);
    referenceWidth_ = *number(start + 7, 1);
    const std::uint64_t count = *number(start + 8, 8);
    root_ = *number(start + 16, 8);
    table_ = *number(start + 24, 8);
    if (count > bytes_.size() || table_ > bytes_.size()) return false;
    isContainerSeen_.resize(count);
    return true;
  }

  bool isSound(std::uint64_t index, int depth) {
    if (index >= isContainerSeen_.size() || depth > deepest_) return false;
    const auto offset = number(table_ + index * offsetWidth_, offsetWidth_);
    const auto marker = offset ? number(*offset, 1) : std::nullopt;
    if (!marker) return false;
    const auto isNotZero = [](std::uint64_t unit) { return unit != 0; };
    const auto refers = [&](std::uint64_t element) { return isSound(element, depth + 1); };
    switch (*marker >> 4U) {
      case 0x4:  // bytes
        return hasOnly(*offset, 1, 1, [](std::uint64_t) { return true; });
      case 0x5:  // text
        return hasOnly(*offset, 1, 1, isNotZero);
      case 0x6:  // text in UTF-16
        return hasOnly(*offset, 2, 1, isNotZero);
      case 0xA:  // array
      case 0xC:  // set
        return isFirstSight(index) && hasOnly(*offset, referenceWidth_, 1, refers);
      case 0xD:  // dictionary: all keys, then all values
        return isFirstSight(index) && hasOnly(*offset, referenceWidth_, 2, refers);
      default:
        return true;
    }
  }

  bool isFirstSight(std::uint64_t container) {
    const bool isFirst = !isContainerSeen_[container];
    isContainerSeen_[container] = true;
    return isFirst;
  }

  /// True when all the units of an object are there and pass the test.
  template <class Test>
  bool hasOnly(std::uint64_t offset, std::uint64_t width, std::uint64_t unitsPerCount,
               const Test& test) {
    std::uint64_t length = *number(offset, 1) & 15U;
    ++offset;
    if (length == 15) {  // the length follows as a number of 2 to the power of its low bits
      const auto marker = number(offset, 1);
      if (!marker || (*marker & 15U) > 3) return false;
      const std::uint64_t lengthWidth = std::uint64_t{1} << (*marker & 15U);
      const auto found = number(offset + 1, lengthWidth);
      if (!found || *found > bytes_.size()) return false;
      length = *found;
      offset += 1 + lengthWidth;
    }
    for (std::uint64_t left = length * unitsPerCount; left > 0; --left, offset += width) {
      const auto unit = number(offset, width);
      if (++unitsRead_ > unitsPerByte * bytes_.size() || !unit || !test(*unit)) return false;
    }
    return true;
  }

  /// Texts may be shared, but not so that a small file fills the memory.
  static constexpr std::uint64_t unitsPerByte = 16;

  const std::string_view bytes_;
  const int deepest_;
  std::uint64_t offsetWidth_ = 0;
  std::uint64_t referenceWidth_ = 0;
  std::uint64_t root_ = 0;
  std::uint64_t table_ = 0;
  std::uint64_t unitsRead_ = 0;
  std::vector<bool> isContainerSeen_;  // by object
};

}  // namespace

bool isSoundBinaryPropertyList(std::string_view bytes, int deepest) {
  return Reader(bytes, deepest).isSound();
}

}  // namespace platform
