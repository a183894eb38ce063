#include "desktop/ratings/pickle.h"

#include <bit>
#include <charconv>
#include <deque>
#include <optional>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace desktop {

namespace {

/// A value is named by its number, since values may hold each other and themselves.
using Number = std::size_t;

struct PickledValue {
  enum class Kind { other, text, number, list, dictionary };
  Kind kind = Kind::other;
  std::string text = {};  ///< of a class: its module and name on two lines
  double number = 0;
  std::vector<Number> members = {};  ///< of a dictionary: names and values in turn
};

using Kind = PickledValue::Kind;

/// A text of the characters U+0000 to U+00FF as the bytes that they stand for; none for others.
std::optional<std::string> bytesOfLatin(std::string_view text) {
  std::string bytes;
  for (std::size_t at = 0; at < text.size(); ++at) {
    const auto lead = static_cast<unsigned char>(text[at]);
    if (lead < 0x80) {
      bytes += text[at];
      continue;
    }
    if ((lead != 0xC2 && lead != 0xC3) || at + 1 == text.size()) return std::nullopt;
    const auto trail = static_cast<unsigned char>(text[++at]);
    bytes += static_cast<char>((lead & 0x03U) << 6U | (trail & 0x3FU));
  }
  return bytes;
}

/// Runs the instructions one after the other on a stack; what is unknown or makes no sense ends it.
class Unpickler {
 public:
  explicit Unpickler(std::string_view bytes) : rest_(bytes), mostCopies_(16 * bytes.size()) {}

  /// The value that is left at the end.
  const PickledValue* run() {
    while (!rest_.empty()) {
      const char instruction = rest_.front();
      rest_.remove_prefix(1);
      if (instruction == '.') return stack_.empty() ? nullptr : &values_[stack_.back()];
      if (!perform(instruction)) return nullptr;
    }
    return nullptr;
  }
  const PickledValue& value(Number number) const { return values_[number]; }

 private:
  // Operands.

  std::optional<std::string_view> take(std::uint64_t length) {
    if (length > rest_.size()) return std::nullopt;
    const auto taken = rest_.substr(0, length);
    rest_.remove_prefix(length);
    return taken;
  }
  /// A little-endian number of so many bytes.
  std::optional<std::uint64_t> takeNumber(std::size_t length) {
    const auto bytes = take(length);
    if (!bytes) return std::nullopt;
    std::uint64_t number = 0;
    for (std::size_t i = length; i-- > 0;) {
      number = number << 8U | static_cast<unsigned char>((*bytes)[i]);
    }
    return number;
  }
  std::optional<std::string_view> takeCounted(std::size_t lengthOfCount) {
    const auto length = takeNumber(lengthOfCount);
    return length ? take(*length) : std::nullopt;
  }
  std::optional<std::string_view> takeLine() {
    const auto end = rest_.find('\n');
    if (end == std::string_view::npos) return std::nullopt;
    const auto line = rest_.substr(0, end);
    rest_.remove_prefix(end + 1);
    return line;
  }

  // The stack.

  bool push(PickledValue value) {
    stack_.push_back(values_.size());
    values_.push_back(std::move(value));
    return true;
  }
  bool pushText(std::optional<std::string_view> text) {
    return text && push({.kind = Kind::text, .text = std::string(*text)});
  }
  bool pushNumber(std::optional<double> number) {
    return number && push({.kind = Kind::number, .number = *number});
  }
  bool pushWhole(std::size_t length) {
    const auto number = takeNumber(length);
    return number && pushNumber(static_cast<double>(*number));
  }
  /// Two's complement of up to eight bytes; larger ones are none of ours.
  bool pushSigned(std::optional<std::uint64_t> length) {
    if (!length) return false;
    if (*length > 8) return take(*length) && push({});
    const auto bits = takeNumber(*length);
    if (!bits) return false;
    const auto unused = static_cast<unsigned>(64 - 8 * *length);
    const auto number = *length == 0 ? 0 : static_cast<std::int64_t>(*bits << unused) >> unused;
    return pushNumber(static_cast<double>(number));
  }
  bool pushDouble() {
    const auto bytes = take(8);
    if (!bytes) return false;
    std::uint64_t bits = 0;
    for (const char byte : *bytes) bits = bits << 8U | static_cast<unsigned char>(byte);
    return pushNumber(std::bit_cast<double>(bits));
  }
  bool pushNumberOnLine() {
    auto line = takeLine();
    if (!line) return false;
    if (line->ends_with('L')) line->remove_suffix(1);
    double number = 0;
    const auto [end, error] = std::from_chars(line->data(), line->data() + line->size(), number);
    return error == std::errc() && end == line->data() + line->size() && pushNumber(number);
  }
  std::size_t floor() const { return marks_.empty() ? 0 : marks_.back(); }
  /// What lies above the last mark, which goes.
  std::optional<std::vector<Number>> popToMark() {
    if (marks_.empty()) return std::nullopt;
    const auto begin = stack_.begin() + static_cast<std::ptrdiff_t>(marks_.back());
    std::vector<Number> above(begin, stack_.end());
    stack_.erase(begin, stack_.end());
    marks_.pop_back();
    return above;
  }
  bool pushList(std::optional<std::vector<Number>> members, Kind kind = Kind::list) {
    return members && push({.kind = kind, .members = std::move(*members)});
  }
  /// Adds to the list or dictionary on the top.
  bool extend(const std::optional<std::vector<Number>>& members) {
    if (!members || stack_.size() <= floor()) return false;
    auto& into = values_[stack_.back()].members;
    into.insert(into.end(), members->begin(), members->end());
    return true;
  }
  std::optional<std::vector<Number>> popSeveral(std::size_t count) {
    if (stack_.size() < floor() + count) return std::nullopt;
    std::vector<Number> popped(stack_.end() - static_cast<std::ptrdiff_t>(count), stack_.end());
    stack_.resize(stack_.size() - count);
    return popped;
  }
  /// What a class or function makes of its arguments: bytes where it is the one that older
  /// protocols write them with, else an object that may turn out to be a dictionary.
  bool pushMade() {
    const auto call = popSeveral(2);
    if (!call) return false;
    const PickledValue& maker = values_[call->front()];
    const PickledValue& arguments = values_[call->back()];
    if (maker.text == "_codecs\nencode" && !arguments.members.empty()) {
      const std::string& latin = values_[arguments.members.front()].text;
      const auto bytes = mayCopy(latin.size()) ? bytesOfLatin(latin) : std::nullopt;
      return bytes && pushText(*bytes);
    }
    return push({.kind = Kind::dictionary});
  }
  bool pushClass(std::optional<std::string_view> module, std::optional<std::string_view> name) {
    return module && name && push({.text = std::string(*module) + '\n' + std::string(*name)});
  }
  bool pushClassOfStack() {
    const auto names = popSeveral(2);
    if (!names) return false;
    const std::string &module = values_[names->front()].text, &name = values_[names->back()].text;
    return mayCopy(module.size() + name.size()) && pushClass(module, name);
  }
  /// Remembered texts can be copied again and again; what is sound copies little.
  bool mayCopy(std::size_t length) {
    copies_ += length;
    return copies_ <= mostCopies_;
  }
  bool remember(std::optional<std::uint64_t> place) {
    if (!place || stack_.empty()) return false;
    memory_[*place] = stack_.back();
    return true;
  }
  bool recall(std::optional<std::uint64_t> place) {
    const auto found = place ? memory_.find(*place) : memory_.end();
    if (found == memory_.end()) return false;
    stack_.push_back(found->second);
    return true;
  }
  std::optional<std::uint64_t> takePlaceOnLine() {
    const auto line = takeLine();
    std::uint64_t place = 0;
    if (!line ||
        std::from_chars(line->data(), line->data() + line->size(), place).ec != std::errc())
      return std::nullopt;
    return place;
  }

  bool perform(char instruction) {
    switch (instruction) {
      case '\x80':
        return take(1).has_value();  // the protocol
      case '\x95':
        return take(8).has_value();  // the length of a frame
      case '(':
        return marks_.push_back(stack_.size()), true;
      case '0':
        return popSeveral(1).has_value();
      case '1':
        return popToMark().has_value();
      case '2':
        return !stack_.empty() && (stack_.push_back(stack_.back()), true);
      case 'N':
        return push({});
      case '\x88':
        return pushNumber(1);
      case '\x89':
        return pushNumber(0);
      case 'I':
      case 'L':
      case 'F':
        return pushNumberOnLine();
      case 'J':
        return pushSigned(4);
      case 'K':
        return pushWhole(1);
      case 'M':
        return pushWhole(2);
      case '\x8a':
        return pushSigned(takeNumber(1));
      case '\x8b':
        return pushSigned(takeNumber(4));
      case 'G':
        return pushDouble();
      case 'V':
        return pushText(takeLine());
      case 'U':
      case 'C':
      case '\x8c':
        return pushText(takeCounted(1));
      case 'T':
      case 'B':
      case 'X':
        return pushText(takeCounted(4));
      case '\x8d':
      case '\x8e':
      case '\x96':
        return pushText(takeCounted(8));
      case ']':
        return pushList(std::vector<Number>());
      case ')':
        return pushList(popSeveral(0));
      case '\x85':
        return pushList(popSeveral(1));
      case '\x86':
        return pushList(popSeveral(2));
      case '\x87':
        return pushList(popSeveral(3));
      case 'l':
      case 't':
        return pushList(popToMark());
      case '}':
        return pushList(std::vector<Number>(), Kind::dictionary);
      case 'd':
        return pushList(popToMark(), Kind::dictionary);
      case 'a':
        return extend(popSeveral(1));
      case 's':
        return extend(popSeveral(2));
      case 'e':
      case 'u':
        return extend(popToMark());
      case 'c': {
        const auto module = takeLine();
        return pushClass(module, takeLine());
      }
      case '\x93':
        return pushClassOfStack();
      case 'R':
      case '\x81':
        return pushMade();
      case '\x92':
        return popSeveral(1) && pushMade();  // with named arguments
      case 'b':
        return popSeveral(1).has_value();  // an object's state
      case 'p':
        return remember(takePlaceOnLine());
      case 'q':
        return remember(takeNumber(1));
      case 'r':
        return remember(takeNumber(4));
      case '\x94':
        return remember(memory_.size());
      case 'g':
        return recall(takePlaceOnLine());
      case 'h':
        return recall(takeNumber(1));
      case 'j':
        return recall(takeNumber(4));
      default:
        return false;
    }
  }

  std::string_view rest_;
  const std::size_t mostCopies_;
  std::size_t copies_ = 0;
  std::deque<PickledValue> values_;
  std::vector<Number> stack_;
  std::vector<std::size_t> marks_;  ///< heights of the stack
  std::unordered_map<std::uint64_t, Number> memory_;
};

}  // namespace

bool readPickledDictionaries(std::string_view bytes,
                             const std::function<void(const PickledMembers&)>& visit) {
  Unpickler unpickler(bytes);
  const PickledValue* list = unpickler.run();
  if (list == nullptr || list->kind != Kind::list) return false;
  std::unordered_set<Number> seen;
  for (const Number number : list->members) {
    const PickledValue& dictionary = unpickler.value(number);
    if (dictionary.kind != Kind::dictionary || !seen.insert(number).second) continue;
    PickledMembers members;
    for (std::size_t i = 0; i + 1 < dictionary.members.size(); i += 2) {
      const PickledValue& name = unpickler.value(dictionary.members[i]);
      const PickledValue& value = unpickler.value(dictionary.members[i + 1]);
      if (name.kind != Kind::text) continue;
      if (value.kind == Kind::text) members[name.text] = value.text;
      if (value.kind == Kind::number) members[name.text] = value.number;
    }
    visit(members);
  }
  return true;
}

}  // namespace desktop
