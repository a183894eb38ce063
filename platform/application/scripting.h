// Scripting objects: references into another application, read and commanded by four-character
// codes over a transport.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "platform/foundation/object.h"
#include "platform/foundation/value.h"

namespace platform {

/// Four ASCII characters, the first in the most significant byte.
enum class FourCharCode : std::uint32_t {};

/// code("kPSP"); the text must have exactly four characters.
consteval FourCharCode code(const char (&text)[5]) {
  std::uint32_t value = 0;
  for (int i = 0; i < 4; ++i) value = value << 8 | static_cast<std::uint8_t>(text[i]);
  return FourCharCode{value};
}

/// The four characters of a code, for messages and test reports.
std::string textFromCode(FourCharCode code);

/// The class and the event of activate(), which every application answers.
inline constexpr FourCharCode miscellaneousClass = code("misc");
inline constexpr FourCharCode activateEvent = code("actv");

/// One step on the way from the application to an object: a property, or an element by index.
struct ScriptingStep {
  FourCharCode code;
  std::optional<std::int64_t> index;  ///< set for an element
  bool operator==(const ScriptingStep&) const = default;
};

using ScriptingPath = std::vector<ScriptingStep>;

/// One request to an application.
struct ScriptingRequest {
  enum class Kind {
    get,      ///< the value at the path
    set,      ///< writes value at the path
    count,    ///< how many elements of the path's last code there are
    resolve,  ///< the class code of the object at the path
    make,     ///< appends an element with the properties in value (a dictionary keyed by name)
    remove,   ///< removes the element at the path
    command   ///< sends an event to the object at the path
  };
  std::string bundleIdentifier{};
  Kind kind = Kind::get;
  ScriptingPath path{};
  Value value{};
  FourCharCode eventClass{};
  FourCharCode eventIdentifier{};
};

/// An answer: a value, or a code (an enumeration, the class of a resolved object).
using ScriptingReply = std::variant<Value, FourCharCode>;

/// Carries requests to applications. One call is one request; it blocks until the answer is
/// there or the application is given up on. Main thread only.
class ScriptingTransport {
 public:
  virtual ~ScriptingTransport() = default;
  /// None when the application does not answer or has no such thing. A command, a write, a make
  /// and a remove answer a null value.
  virtual std::optional<ScriptingReply> send(const ScriptingRequest& request) = 0;
};

class SBApplication;

/// A reference to something in an application. Making one sends nothing.
class SBObject : public NSObject {
 public:
  SBObject(std::string bundleIdentifier, ScriptingPath path)
      : bundleIdentifier_(std::move(bundleIdentifier)), path_(std::move(path)) {}

  const std::string& bundleIdentifier() const { return bundleIdentifier_; }
  const ScriptingPath& path() const { return path_; }

  /// The reference to a property whose value is plain.
  std::shared_ptr<SBObject> propertyWithCode(FourCharCode code) const;

  /// The reference to a property whose value is an object of class T.
  template <class T>
  std::shared_ptr<T> propertyWithClass_code(FourCharCode code) const {
    return make<T>(bundleIdentifier_, extendedPath({code, std::nullopt}));
  }

  // Reading a plain property: one request each. What cannot be read is the zero value.
  std::optional<std::string> stringValue() const;  ///< none when missing or not a text
  bool boolValue() const;
  std::int64_t integerValue() const;
  double doubleValue() const;
  FourCharCode enumCodeValue() const;  ///< 0 when it cannot be read
  Data data() const;

  /// Writes the property; silent when it fails.
  void setTo(Value value) const;

  /// Sends a command without parameters to the object; silent when it fails.
  void sendEvent_id_parameters(FourCharCode eventClass, FourCharCode eventIdentifier) const;

  /// Removes the element that this refers to; silent when it fails.
  void removeFromContainer() const;

  /// The class code of the object; 0 when there is no such object.
  FourCharCode resolvedClassCode() const;

  /// How many elements of a class the object has; 0 when it cannot be read.
  std::int64_t elementCount(FourCharCode code) const;

  /// Appends an element with these properties, keyed by name; true when the
  /// application has done so.
  bool makeElement(FourCharCode code, Dictionary properties) const;

 protected:
  ScriptingPath extendedPath(ScriptingStep step) const;

 private:
  std::optional<ScriptingReply> send(ScriptingRequest request) const;

  std::string bundleIdentifier_;
  ScriptingPath path_;
};

/// The elements of one class in an object; nothing is read until it is asked for.
template <class T>
class SBElementArray {
 public:
  SBElementArray(std::shared_ptr<const SBObject> owner, FourCharCode code)
      : owner_(std::move(owner)), code_(code) {}

  std::int64_t count() const { return owner_->elementCount(code_); }

  /// The reference to an element; sends nothing, so it may lead nowhere.
  std::shared_ptr<T> objectAtIndex(std::int64_t index) const {
    ScriptingPath path = owner_->path();
    path.push_back({code_, index});
    return make<T>(owner_->bundleIdentifier(), std::move(path));
  }

  bool addObject(Dictionary properties) const {
    return owner_->makeElement(code_, std::move(properties));
  }
  void removeObjectAtIndex(std::int64_t index) const {
    objectAtIndex(index)->removeFromContainer();
  }

 private:
  std::shared_ptr<const SBObject> owner_;
  FourCharCode code_;
};

/// A scriptable application.
class SBApplication : public SBObject {
 public:
  explicit SBApplication(std::string bundleIdentifier)
      : SBObject(std::move(bundleIdentifier), {}) {}

  /// Brings the application to the front.
  void activate() const;
};

}  // namespace platform
