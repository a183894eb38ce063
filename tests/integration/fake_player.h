// A player on the bus that answers whatever a test wants, from a thread of its own.
#pragma once

#include <QtCore/QMutex>
#include <QtCore/QThread>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVirtualObject>
#include <atomic>

#include "tests/integration/processes.h"

namespace tests {

class FakePlayer final : public QDBusVirtualObject {
 public:
  /// The name without "org.mpris.MediaPlayer2."; takes it at once.
  FakePlayer(const PrivateBus& bus, const QString& name, const QVariantMap& properties);
  ~FakePlayer() override;

  /// What "org.mpris.MediaPlayer2.Player" has; nothing is signalled.
  void setProperties(const QVariantMap& properties);
  /// Has these properties and signals them.
  void tell(const QVariantMap& properties) {
    setProperties(properties);
    signalChange(properties);
  }
  /// Answers nothing until it is released.
  void hold() { isHeld_ = true; }
  void release();
  /// The signal that these have changed.
  static QDBusMessage changeSignal(const QVariantMap& changed);
  void signalChange(const QVariantMap& changed) const { connection_.send(changeSignal(changed)); }
  void leaveBus() { connection_.unregisterService(name_); }
  /// The methods called so far, with their arguments: "SetPosition /track/1 1000000".
  QStringList calls() const;
  /// How many questions it has come to, answered or not.
  int questionCount() const { return questionCount_; }

 private:
  // Introspection is answered like everything else.
  QString introspect(const QString&) const override { return {}; }
  bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;
  QDBusMessage answer(const QDBusMessage& message);

  const QString name_;
  QDBusConnection connection_;
  mutable QMutex mutex_;
  QVariantMap properties_;  // guarded by mutex_, as are the calls
  QStringList calls_;
  std::atomic<bool> isHeld_ = false;
  std::atomic<int> questionCount_ = 0;
  QThread thread_;
};

}  // namespace tests
