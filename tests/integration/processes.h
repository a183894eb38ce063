// Real programs around the tests. Each is started by the object that stands for it and ends with
// it.
#pragma once

#include <QtCore/QProcess>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtDBus/QDBusConnection>
#include <chrono>
#include <csignal>
#include <functional>
#include <map>
#include <string>

#include "tests/support/temporary_folder.h"

namespace tests {

using Environment = std::map<QString, QString>;

/// Turns Qt's event loop until the condition holds; false when it does not within the time.
bool waitUntil(const std::function<bool()>& condition,
               std::chrono::milliseconds patience = std::chrono::seconds(10));

/// A running program; killed at the latest with this object.
class Program {
 public:
  Program(const QString& name, const QStringList& arguments, const Environment& environment = {});
  ~Program();

  void send(int signal) const;
  /// Waits for its end; -1 when it does not come, or comes by a signal.
  int exitStatus();
  /// Its next line on standard output, without the line's end; empty when none comes.
  QString readLine();

 private:
  QProcess process_;
};

/// What a program that ends by itself writes to standard output, without the last line's end.
QString outputOf(const QString& name, const QStringList& arguments,
                 const Environment& environment = {});

/// A message bus of the test's own, and the test's connection to it.
class PrivateBus {
 public:
  PrivateBus();
  ~PrivateBus();

  const QString& address() const { return address_; }
  const QDBusConnection& connection() const { return connection_; }
  /// What a program needs to find this bus.
  Environment environment() const;
  /// What playerctl says when asked, an independent witness of the player's state.
  QString playerctl(const QStringList& arguments) const;
  bool hasName(const QString& name) const;

 private:
  Program daemon_;
  const QString address_;
  const QString connectionName_;
  const QDBusConnection connection_;
};

/// The same with a home of the test's own, where no player is installed.
Environment atHome(Environment environment, const TemporaryFolder& home);

/// An X display of the test's own.
class Display {
 public:
  explicit Display(const PrivateBus& bus);

  /// What a program needs to find the display and the bus.
  Environment environment() const { return environment_; }
  /// What xdotool answers to commands, of several lines the last one.
  QString xdotool(const QString& commands) const;
  /// Waits for a visible window of that class and answers its number.
  QString window(const char* windowClass) const;

 private:
  Program server_;
  Environment environment_;
};

}  // namespace tests
