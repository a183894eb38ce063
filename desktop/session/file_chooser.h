// The desktop's own dialogs for files, through its portal (xdg-desktop-portal's FileChooser).
#pragma once

#include <QtCore/QObject>
#include <QtCore/QString>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusConnection>
#include <QtDBus/QDBusObjectPath>
#include <functional>
#include <string>

namespace desktop {

/// Asks for one file at a time; a question takes the place of the one before. Main thread only.
class FileChooser final : public QObject {
  Q_OBJECT

 public:
  using Chosen = std::function<void(const std::string& path)>;
  explicit FileChooser(const QDBusConnection& bus) : bus_(bus) {}

  /// True where the desktop has such dialogs.
  bool isThere() const;
  /// Lets the user choose a file that is there, or a place for a new one. Nothing is called when
  /// the user thinks better of it.
  void open(const std::string& title, Chosen chosen);
  void save(const std::string& title, const std::string& name, Chosen chosen);

 private slots:  // called by the bus
  void responded(uint response, const QVariantMap& results);

 private:
  void ask(const QString& method, const std::string& title, QVariantMap options, Chosen chosen);

  const QDBusConnection bus_;
  QString request_;  ///< the object that answers; empty when nothing is asked
  int count_ = 0;
  Chosen chosen_;
};

}  // namespace desktop
