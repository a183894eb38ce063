// A player on the bus that answers whatever a test wants, from a thread of its own.
#pragma once

#include <QtCore/QMutex>
#include <QtCore/QStringList>
#include <QtCore/QThread>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusMessage>
#include <QtDBus/QDBusVirtualObject>
#include <atomic>
#include <chrono>

#include "tests/integration/processes.h"

namespace tests {

class FakePlayer {
 public:
  /// The name without "org.mpris.MediaPlayer2."; takes it at once.
  FakePlayer(const PrivateBus& bus, const QString& name, const QVariantMap& properties);
  ~FakePlayer();
  FakePlayer(const FakePlayer&) = delete;
  FakePlayer& operator=(const FakePlayer&) = delete;

  /// What "org.mpris.MediaPlayer2.Player" has; nothing is signalled.
  void setProperties(const QVariantMap& properties) { object_.setProperties(properties); }
  /// How long each answer takes.
  void setAnswerTime(std::chrono::milliseconds time) { object_.setAnswerTime(time); }
  void signalChange(const QVariantMap& changed);
  void leaveBus() { connection_.unregisterService(name_); }
  void returnToBus() { connection_.registerService(name_); }
  /// The methods called so far, with their arguments: "SetPosition /track/1 1000000".
  QStringList calls() const { return object_.calls(); }
  int answerCount() const { return object_.answerCount(); }

 private:
  class Object final : public QDBusVirtualObject {
   public:
    explicit Object(QVariantMap properties) : properties_(std::move(properties)) {}
    QString introspect(const QString& path) const override;
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& connection) override;
    void setProperties(const QVariantMap& properties);
    void setAnswerTime(std::chrono::milliseconds time) { answerTime_ = time; }
    QStringList calls() const;
    int answerCount() const { return answerCount_; }

   private:
    QDBusMessage answer(const QDBusMessage& message);

    mutable QMutex mutex_;
    QVariantMap properties_;  // guarded by mutex_, as are the calls
    QStringList calls_;
    std::atomic<std::chrono::milliseconds> answerTime_{};
    std::atomic<int> answerCount_ = 0;
  };

  const QString name_;
  QDBusConnection connection_;
  Object object_;
  QThread thread_;
};

}  // namespace tests
