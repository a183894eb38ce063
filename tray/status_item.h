// The icon as the desktop's status area sees it (KDE and freedesktop.org, StatusNotifierItem).
#pragma once

#include <QtCore/QByteArray>
#include <QtCore/QElapsedTimer>
#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtDBus/QDBusAbstractAdaptor>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusObjectPath>
#include <functional>

namespace tray {

/// ARGB, 32 bits each in network byte order.
struct Pixels {
  int width = 0;
  int height = 0;
  QByteArray bytes;
};

struct ItemToolTip {
  QString iconName;
  QList<Pixels> icon;
  QString title;
  QString text;  ///< with simple markup
};

class StatusItem final : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "org.kde.StatusNotifierItem")
  Q_PROPERTY(QString Category READ category CONSTANT)
  Q_PROPERTY(QString Id READ id CONSTANT)
  Q_PROPERTY(QString Title READ title CONSTANT)
  Q_PROPERTY(QString Status READ status CONSTANT)
  Q_PROPERTY(int WindowId READ windowId CONSTANT)
  Q_PROPERTY(QString IconName READ iconName CONSTANT)
  Q_PROPERTY(QList<tray::Pixels> IconPixmap READ icon CONSTANT)
  Q_PROPERTY(tray::ItemToolTip ToolTip READ toolTip)
  Q_PROPERTY(bool ItemIsMenu READ isMenu CONSTANT)
  Q_PROPERTY(QDBusObjectPath Menu READ menu CONSTANT)

 public:
  struct Options {
    QString iconName;  ///< in the desktop's theme
    QString iconFile;  ///< for themes without it
    QString menuPath;  ///< where the menu lies on the bus
    std::function<void()> activated;
    std::function<void()> middleClicked;
    std::function<void(int steps)> scrolled;  ///< upwards; negative downwards
  };
  /// The parent is the object that is found on the bus.
  StatusItem(QObject* parent, Options options);

  /// Shows these below the program's name.
  void setToolTip(const QStringList& lines);

  static QString category() { return QStringLiteral("ApplicationStatus"); }
  static QString id() { return QStringLiteral("virelune-widget"); }
  static QString title() { return QStringLiteral("Virelune"); }
  static QString status() { return QStringLiteral("Active"); }
  static int windowId() { return 0; }
  static bool isMenu() { return false; }
  QString iconName() const { return options_.iconName; }
  QList<Pixels> icon() const;
  ItemToolTip toolTip() const { return toolTip_; }
  QDBusObjectPath menu() const { return QDBusObjectPath(options_.menuPath); }

 public slots:  // called by the bus
  void Activate(int x, int y);
  void SecondaryActivate(int x, int y);
  /// The status area shows the menu by itself.
  void ContextMenu(int x, int y) const;
  void Scroll(int delta, const QString& orientation);

 signals:
  void NewToolTip();

 private:
  const Options options_;
  ItemToolTip toolTip_;
  QElapsedTimer sinceSmallStep_;
  bool countsDegrees_ = false;  ///< what the status area sends
};

QDBusArgument& operator<<(QDBusArgument& argument, const Pixels& pixels);
const QDBusArgument& operator>>(const QDBusArgument& argument, Pixels& pixels);
QDBusArgument& operator<<(QDBusArgument& argument, const ItemToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, ItemToolTip& toolTip);

}  // namespace tray
