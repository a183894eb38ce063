#include "platform/application/scripting.h"

#include <algorithm>

#include "platform/platform.h"

namespace platform {

std::string textFromCode(FourCharCode code) {
  const auto value = static_cast<std::uint32_t>(code);
  std::string text;
  for (const unsigned shift : {24U, 16U, 8U, 0U}) text += static_cast<char>(value >> shift & 0xFFU);
  return text;
}

std::optional<ScriptingReply> SBObject::send(ScriptingRequest request) const {
  ScriptingTransport* transport = current().scripting;
  if (transport == nullptr) return std::nullopt;
  request.bundleIdentifier = bundleIdentifier_;
  return transport->send(request);
}

ScriptingPath SBObject::extendedPath(ScriptingStep step) const {
  ScriptingPath path = path_;
  path.push_back(step);
  return path;
}

std::shared_ptr<SBObject> SBObject::propertyWithCode(FourCharCode code) const {
  return make<SBObject>(bundleIdentifier_, extendedPath({code, std::nullopt}));
}

namespace {

/// The value of a reply as a T; none for a code, for another class, and for no reply.
template <class T>
std::optional<T> valueOf(const std::optional<ScriptingReply>& reply) {
  const Value* value = reply ? std::get_if<Value>(&*reply) : nullptr;
  return value != nullptr ? value->as<T>() : std::nullopt;
}

FourCharCode codeOf(const std::optional<ScriptingReply>& reply) {
  const FourCharCode* found = reply ? std::get_if<FourCharCode>(&*reply) : nullptr;
  return found != nullptr ? *found : FourCharCode{};
}

}  // namespace

std::optional<std::string> SBObject::stringValue() const {
  return valueOf<std::string>(send({.kind = ScriptingRequest::Kind::get, .path = path_}));
}

bool SBObject::boolValue() const {
  const auto number = valueOf<Number>(send({.kind = ScriptingRequest::Kind::get, .path = path_}));
  return number && number->boolValue();
}

std::int64_t SBObject::integerValue() const {
  const auto number = valueOf<Number>(send({.kind = ScriptingRequest::Kind::get, .path = path_}));
  return number ? number->integerValue() : 0;
}

double SBObject::doubleValue() const {
  const auto number = valueOf<Number>(send({.kind = ScriptingRequest::Kind::get, .path = path_}));
  return number ? number->doubleValue() : 0;
}

FourCharCode SBObject::enumCodeValue() const {
  return codeOf(send({.kind = ScriptingRequest::Kind::get, .path = path_}));
}

Data SBObject::data() const {
  return valueOf<Data>(send({.kind = ScriptingRequest::Kind::get, .path = path_})).value_or(Data());
}

void SBObject::setTo(Value value) const {
  send({.kind = ScriptingRequest::Kind::set, .path = path_, .value = std::move(value)});
}

void SBObject::sendEvent_id_parameters(FourCharCode eventClass,
                                       FourCharCode eventIdentifier) const {
  send({.kind = ScriptingRequest::Kind::command,
        .path = path_,
        .eventClass = eventClass,
        .eventIdentifier = eventIdentifier});
}

void SBObject::removeFromContainer() const {
  send({.kind = ScriptingRequest::Kind::remove, .path = path_});
}

FourCharCode SBObject::resolvedClassCode() const {
  return codeOf(send({.kind = ScriptingRequest::Kind::resolve, .path = path_}));
}

std::int64_t SBObject::elementCount(FourCharCode code) const {
  const auto number = valueOf<Number>(
      send({.kind = ScriptingRequest::Kind::count, .path = extendedPath({code, std::nullopt})}));
  return number ? std::max<std::int64_t>(number->integerValue(), 0) : 0;
}

bool SBObject::makeElement(FourCharCode code, Dictionary properties) const {
  return send({.kind = ScriptingRequest::Kind::make,
               .path = extendedPath({code, std::nullopt}),
               .value = std::move(properties)})
      .has_value();
}

void SBApplication::activate() const { sendEvent_id_parameters(miscellaneousClass, activateEvent); }

}  // namespace platform
