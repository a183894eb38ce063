// The root of all objects: run-time class tests, weak references, two-step creation.
#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace platform {

/// Root class. Objects live in shared pointers made by make(); whatever points back at an owner
/// holds a weak reference.
class NSObject : public std::enable_shared_from_this<NSObject> {
 public:
  virtual ~NSObject() = default;
  NSObject(const NSObject&) = delete;
  NSObject& operator=(const NSObject&) = delete;

  /// Runs once, right after construction; virtual calls are safe here. False: creation failed.
  virtual bool init() { return true; }

 protected:
  NSObject() = default;
};

/// Constructs a T and runs its init(); null when init() answers false.
template <class T, class... Args>
std::shared_ptr<T> make(Args&&... args) {
  auto object = std::make_shared<T>(std::forward<Args>(args)...);
  return object->init() ? object : nullptr;
}

/// A weak reference to an object's own self, for callbacks that must not keep it alive.
template <class T>
std::weak_ptr<T> weakReference(T* self) {
  return std::static_pointer_cast<T>(self->shared_from_this());
}

/// The name of an action: a member function that takes the sender and answers whether it acted.
/// A target responds to it when it is of the class that has the member function.
class Selector {
 public:
  Selector() = default;

  template <class T>
  Selector(bool (T::*method)(NSObject*))  // NOLINT: reads as the name of the action
      : perform_([method](NSObject& target, NSObject* sender) {
          auto* receiver = dynamic_cast<T*>(&target);
          if (receiver == nullptr) return false;
          (receiver->*method)(sender);
          return true;
        }) {}

  explicit operator bool() const { return static_cast<bool>(perform_); }

  /// Sends the action to a target that lives; false when there is none or it does not respond.
  bool send(const std::weak_ptr<NSObject>& target, NSObject* sender) const {
    const auto receiver = target.lock();
    return receiver != nullptr && perform_ && perform_(*receiver, sender);
  }

 private:
  std::function<bool(NSObject&, NSObject*)> perform_;
};

}  // namespace platform
