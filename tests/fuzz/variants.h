// Values as they come over the bus, made of a fuzzer's bytes.
#pragma once

#include <fuzzer/FuzzedDataProvider.h>

#include <QtCore/QStringList>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusObjectPath>
#include <QtDBus/QDBusVariant>
#include <limits>
#include <span>

namespace fuzz {

inline QString text(FuzzedDataProvider& bytes) {
  const auto once = QString::fromStdString(bytes.ConsumeRandomLengthString(64));
  return bytes.ConsumeBool() ? once : once.repeated(bytes.ConsumeIntegralInRange(0, 400));
}

inline QVariantMap map(FuzzedDataProvider& bytes, std::span<const char* const> keys, int depth);

inline QVariant variant(FuzzedDataProvider& bytes, std::span<const char* const> keys, int depth) {
  switch (bytes.ConsumeIntegralInRange(0, depth > 0 ? 10 : 6)) {
    case 0:
      return text(bytes);
    case 1:
      return bytes.ConsumeIntegral<qlonglong>();
    case 2:
      return bytes.ConsumeIntegral<quint32>();
    case 3:
      return bytes.ConsumeFloatingPoint<double>();
    case 4:
      return bytes.ConsumeBool() ? std::numeric_limits<double>::quiet_NaN() : HUGE_VAL;
    case 5:
      return bytes.ConsumeBool();
    case 6:
      return QVariant::fromValue(QDBusObjectPath(QStringLiteral("/track/1")));
    case 7:
      return QStringList{text(bytes), text(bytes)};
    case 8:
      return map(bytes, keys, depth - 1);
    case 9:
      return QVariant::fromValue(QDBusVariant(variant(bytes, keys, depth - 1)));
    default:
      return QVariantList{variant(bytes, keys, depth - 1), variant(bytes, keys, depth - 1)};
  }
}

inline QVariantMap map(FuzzedDataProvider& bytes, std::span<const char* const> keys, int depth) {
  QVariantMap values;
  for (const char* key : keys) {
    if (bytes.ConsumeBool()) values.insert(QLatin1String(key), variant(bytes, keys, depth));
  }
  return values;
}

}  // namespace fuzz
