// Structures of the bus, field by field.
#pragma once

#include <QtDBus/QDBusArgument>

namespace tray {

template <typename... Fields>
QDBusArgument& writeStructure(QDBusArgument& argument, const Fields&... fields) {
  argument.beginStructure();
  (argument << ... << fields);
  argument.endStructure();
  return argument;
}

template <typename... Fields>
const QDBusArgument& readStructure(const QDBusArgument& argument, Fields&... fields) {
  argument.beginStructure();
  (argument >> ... >> fields);
  argument.endStructure();
  return argument;
}

}  // namespace tray
