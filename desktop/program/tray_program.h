// The program that shows the icon in the desktop's status area.
#pragma once

#include <QtCore/QProcess>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusServiceWatcher>
#include <functional>

namespace desktop {

/// A program of its own, because the icon brings libraries that nobody else is to load. Ends with
/// its owner.
class TrayProgram final : public QObject {
 public:
  /// The callback is called when there is no icon any more that could bring a hidden card back.
  TrayProgram(const QDBusConnection& bus, std::function<void()> gone);
  ~TrayProgram() override;

  bool hasStatusArea() const;
  /// There is an icon.
  bool isShown() const { return isWanted_ && isRunning() && hasStatusArea(); }
  bool isWanted() const { return isWanted_; }
  void setWanted(bool wanted);

 private:
  bool isRunning() const { return program_.state() != QProcess::NotRunning; }

  const QDBusConnection bus_;
  const std::function<void()> gone_;
  QDBusServiceWatcher watcher_;
  QProcess program_;
  bool isWanted_ = false;
};

}  // namespace desktop
