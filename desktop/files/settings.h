// What the user has set up, kept from one run to the next.
#pragma once

#include <QtCore/QPoint>
#include <QtCore/QSettings>
#include <QtCore/QString>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace desktop {

/// An INI file that is written as a whole, at once with each setting; what other processes have
/// changed in it meanwhile stays. Values that make no sense count as missing. Main thread only.
class Settings {
 public:
  /// virelune-widget/settings.ini in the user's configuration folder; empty when that is not known.
  static std::filesystem::path defaultFile();

  /// A file that cannot be read is set aside with ".damaged" behind its name, which one line on
  /// standard error says. Without a file nothing is remembered.
  explicit Settings(const std::filesystem::path& file);

  /// The card's upper left corner on these screens, else where it was put last on others. A layout
  /// is named by a text that tells it from others.
  std::optional<QPoint> position(const QString& layout) const;
  void setPosition(const QString& layout, QPoint position);

  /// The player to follow while it is there; empty: whichever plays.
  std::string player() const;
  void setPlayer(const std::string& name);
  /// The desktop entry of the player that was followed last; empty when there was none.
  std::string lastPlayer() const;
  void setLastPlayer(const std::string& desktopEntry);

  bool isOnTop() const;
  void setOnTop(bool onTop);
  std::optional<double> scale() const;  ///< pixels per point, from 1 to 4
  void setScale(double scale);
  /// How large the desktop wanted texts last, from 1 (usual) to 4.
  std::optional<double> textScale() const;
  void setTextScale(double scale);
  bool hidesWhenIdle() const;  ///< the card hides while nothing plays
  void setHidesWhenIdle(bool hides);
  bool showsStatusIcon() const;  ///< in the desktop's status area
  void setShowsStatusIcon(bool shows);
  bool writesLibraries() const;  ///< ratings go into players' libraries; true unless set otherwise
  void setWritesLibraries(bool writes);

 private:
  QVariant value(const QString& key) const;
  std::string text(const QString& key) const;
  std::optional<double> scaleAt(const QString& key) const;
  void set(const QString& key, const QVariant& value);
  bool isTrue(const QString& key, bool otherwise) const;
  void setTrue(const QString& key, bool isTrue);

  std::unique_ptr<QSettings> values_;  // null without a file
};

}  // namespace desktop
