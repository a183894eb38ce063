// The icon's menu as the status area reads it, to show it in its own way
// ("com.canonical.dbusmenu").
#pragma once

#include <QtCore/QList>
#include <QtCore/QString>
#include <QtCore/QStringList>
#include <QtCore/QVariantMap>
#include <QtDBus/QDBusAbstractAdaptor>
#include <QtDBus/QDBusArgument>
#include <QtDBus/QDBusContext>
#include <QtDBus/QDBusVariant>
#include <functional>
#include <optional>

namespace tray {

struct MenuItem {
  QString name = {};  ///< of the action; empty for a line between groups
  QString label = {};
  bool isPossible = true;
  std::optional<bool> isOn = std::nullopt;  ///< none for what is no switch

  bool operator==(const MenuItem&) const = default;
};

/// An item with its properties and, as variants, the items below it.
struct MenuLayout {
  int id = 0;
  QVariantMap properties;
  QList<QDBusVariant> items;
};

struct MenuProperties {
  int id = 0;
  QVariantMap properties;
};

struct MenuEvent {
  int id = 0;
  QString kind;  ///< "clicked", "hovered", …
  QDBusVariant data;
  uint time = 0;
};

/// A menu of one level: its root is item 0, and the others count from 1.
class Menu final : public QDBusAbstractAdaptor {
  Q_OBJECT
  Q_CLASSINFO("D-Bus Interface", "com.canonical.dbusmenu")
  Q_PROPERTY(uint Version READ version CONSTANT)
  Q_PROPERTY(QString TextDirection READ textDirection CONSTANT)
  Q_PROPERTY(QString Status READ status CONSTANT)
  Q_PROPERTY(QStringList IconThemePath READ iconThemePath CONSTANT)

 public:
  struct Options {
    std::function<void(const QString& name)> chosen;
    std::function<void()> aboutToShow;
  };
  /// The parent is the object that is found on the bus.
  Menu(QObject* parent, Options options);

  void setItems(const QList<MenuItem>& items);

  static uint version() { return 3; }
  static QString textDirection();
  static QString status() { return QStringLiteral("normal"); }
  static QStringList iconThemePath() { return {}; }

 public slots:  // called by the bus
  uint GetLayout(int parent, int depth, const QStringList& properties, tray::MenuLayout& layout);
  QList<tray::MenuProperties> GetGroupProperties(const QList<int>& ids,
                                                 const QStringList& properties) const;
  QDBusVariant GetProperty(int id, const QString& name) const;
  void Event(int id, const QString& kind, const QDBusVariant& data, uint time);
  QList<int> EventGroup(const QList<tray::MenuEvent>& events);
  bool AboutToShow(int id);
  QList<int> AboutToShowGroup(const QList<int>& ids, QList<int>& unknown);

 signals:
  void LayoutUpdated(uint revision, int parent);

 private:
  bool isKnown(int id) const { return id >= 0 && id <= items_.size(); }
  /// All of them when no names are given; nothing for an unknown item.
  QVariantMap propertiesOf(int id, const QStringList& names) const;

  const Options options_;
  QList<MenuItem> items_;
  uint revision_ = 1;
};

QDBusArgument& operator<<(QDBusArgument& argument, const MenuLayout& layout);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuLayout& layout);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuProperties& item);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuProperties& item);
QDBusArgument& operator<<(QDBusArgument& argument, const MenuEvent& event);
const QDBusArgument& operator>>(const QDBusArgument& argument, MenuEvent& event);

}  // namespace tray
