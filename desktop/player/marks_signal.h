// Word between the programs of a session that marks have changed in the ratings store.
#pragma once

#include <QtCore/QObject>
#include <QtDBus/QDBusConnection>
#include <functional>

namespace desktop {

/// A rating that is made in one place shows in all of them at once.
class MarksSignal final : public QObject {
  Q_OBJECT

 public:
  /// Calls back when any program has changed marks, this one included.
  MarksSignal(const QDBusConnection& bus, std::function<void()> received);

  /// Tells all of them.
  static void send(const QDBusConnection& bus);

 private slots:  // called by the bus
  void marksChanged() { received_(); }

 private:
  const std::function<void()> received_;
};

}  // namespace desktop
