#include "platform/foundation/binary_property_list.h"

#include <algorithm>
#include <cstdint>
#include <optional>
#include <vector>

namespace platform {
namespace {

// The kinds of objects that matter here, in the high half of an object's first byte.
constexpr std::uint64_t text = 0x5;
constexpr std::uint64_t textUTF16 = 0x6;
constexpr std::uint64_t array = 0xA;
constexpr std::uint64_t set = 0xC;
constexpr std::uint64_t dictionary = 0xD;

class Reader {
 public:
  explicit Reader(std::string_view bytes) : bytes_(bytes) {}

  bool isSound() {
    return readTrailer() && readKinds() && refer(root_) &&
           std::all_of(objects_.begin(), objects_.end(),
                       [this](const Object& object) { return isSound(object); });
  }

 private:
  struct Object {
    std::uint64_t kind = 0;
    std::uint64_t offset = 0;
    bool isReferredTo = false;

    bool isContainer() const { return kind == array || kind == set || kind == dictionary; }
  };

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
    count_ = *number(start + 8, 8);
    root_ = *number(start + 16, 8);
    table_ = *number(start + 24, 8);
    return count_ <= bytes_.size() && table_ <= bytes_.size();
  }

  bool readKinds() {
    for (std::uint64_t index = 0; index < count_; ++index) {
      const auto offset = number(table_ + index * offsetWidth_, offsetWidth_);
      const auto marker = offset ? number(*offset, 1) : std::nullopt;
      if (!marker) return false;
      objects_.push_back({*marker >> 4U, *offset});
    }
    return true;
  }

  /// False when there is no such object, or when it is a container referred to before.
  bool refer(std::uint64_t index) {
    if (index >= objects_.size()) return false;
    Object& object = objects_[index];
    if (object.isContainer() && object.isReferredTo) return false;
    object.isReferredTo = true;
    return true;
  }

  bool isSound(const Object& object) {
    const auto isNotZero = [](std::uint64_t unit) { return unit != 0; };
    if (object.kind == text) return hasOnly(object, 1, isNotZero);
    if (object.kind == textUTF16) return hasOnly(object, 2, isNotZero);
    if (!object.isContainer()) return true;
    const auto refers = [this](std::uint64_t index) { return refer(index); };
    return hasOnly(object, referenceWidth_, refers, object.kind == dictionary ? 2 : 1);
  }

  /// True when all the elements of an object are there and pass the test.
  template <class Test>
  bool hasOnly(const Object& object, std::uint64_t width, const Test& test,
               std::uint64_t elementsPerCount = 1) {
    std::uint64_t length = *number(object.offset, 1) & 15U;
    std::uint64_t offset = object.offset + 1;
    if (length == 15) {  // the length follows as a number of 2 to the power of its low bits
      const auto marker = number(offset, 1);
      if (!marker || (*marker & 15U) > 3) return false;
      const std::uint64_t lengthWidth = std::uint64_t{1} << (*marker & 15U);
      const auto found = number(offset + 1, lengthWidth);
      if (!found || *found > bytes_.size()) return false;
      length = *found;
      offset += 1 + lengthWidth;
    }
    for (std::uint64_t left = length * elementsPerCount; left > 0; --left, offset += width) {
      const auto element = number(offset, width);
      if (!element || !test(*element)) return false;
    }
    return true;
  }

  const std::string_view bytes_;
  std::uint64_t offsetWidth_ = 0;
  std::uint64_t referenceWidth_ = 0;
  std::uint64_t count_ = 0;
  std::uint64_t root_ = 0;
  std::uint64_t table_ = 0;
  std::vector<Object> objects_;
};

}  // namespace

bool isSoundBinaryPropertyList(std::string_view bytes) { return Reader(bytes).isSound(); }

}  // namespace platform
