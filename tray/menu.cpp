#include "tray/menu.h"

#include <QtCore/QLocale>
#include <QtDBus/QDBusMetaType>
#include <utility>

#include "tray/structure.h"

namespace tray {

Menu::Menu(QObject* parent, Options options)
    : QDBusAbstractAdaptor(parent), options_(std::move(options)) {
  qDBusRegisterMetaType<MenuLayout>();
  qDBusRegisterMetaType<MenuProperties>();
  qDBusRegisterMetaType<QList<MenuProperties>>();
  qDBusRegisterMetaType<MenuEvent>();
  qDBusRegisterMetaType<QList<MenuEvent>>();
  setAutoRelaySignals(true);
}

void Menu::setItems(const QList<MenuItem>& items) {
  if (items == items_) return;
  items_ = items;
  emit LayoutUpdated(++revision_, 0);
}

QString Menu::textDirection() {
  return QLocale().textDirection() == Qt::RightToLeft ? QStringLiteral("rtl")
                                                      : QStringLiteral("ltr");
}

QVariantMap Menu::propertiesOf(int id, const QStringList& names) const {
  QVariantMap all;
  if (id == 0) {
    all.insert(QStringLiteral("children-display"), QStringLiteral("submenu"));
  } else if (isKnown(id) && items_[id - 1].name.isEmpty()) {
    all.insert(QStringLiteral("type"), QStringLiteral("separator"));
  } else if (isKnown(id)) {
    const MenuItem& item = items_[id - 1];
    QString label = item.label;
    // A single one marks the key of the letter behind it.
    all.insert(QStringLiteral("label"), label.replace(QLatin1Char('_'), QLatin1String("__")));
    all.insert(QStringLiteral("enabled"), item.isPossible);
    if (item.isOn) {
      all.insert(QStringLiteral("toggle-type"), QStringLiteral("checkmark"));
      all.insert(QStringLiteral("toggle-state"), *item.isOn ? 1 : 0);
    }
  }
  if (names.isEmpty()) return all;
  QVariantMap wanted;
  for (auto property = all.begin(); property != all.end(); ++property) {
    if (names.contains(property.key())) wanted.insert(property.key(), *property);
  }
  return wanted;
}

uint Menu::GetLayout(int parent, int depth, const QStringList& properties, MenuLayout& layout) {
  layout = {parent, propertiesOf(parent, properties), {}};
  if (parent != 0 || depth == 0) return revision_;
  for (int id = 1; isKnown(id); ++id) {
    const MenuLayout item{id, propertiesOf(id, properties), {}};
    layout.items.append(QDBusVariant(QVariant::fromValue(item)));
  }
  return revision_;
}

QList<MenuProperties> Menu::GetGroupProperties(const QList<int>& ids,
                                               const QStringList& properties) const {
  QList<MenuProperties> group;
  for (const int id : ids) {
    if (isKnown(id)) group.append({id, propertiesOf(id, properties)});
  }
  return group;
}

QDBusVariant Menu::GetProperty(int id, const QString& name) const {
  // There is no variant without a value on the bus.
  return QDBusVariant(propertiesOf(id, {}).value(name, QString()));
}

void Menu::Event(int id, const QString& kind, const QDBusVariant&, uint) {
  if (kind != QLatin1String("clicked") || id == 0 || !isKnown(id)) return;
  const MenuItem item = items_[id - 1];
  if (!item.name.isEmpty() && item.isPossible) options_.chosen(item.name);
}

QList<int> Menu::EventGroup(const QList<MenuEvent>& events) {
  QList<int> unknown;
  for (const MenuEvent& event : events) {
    if (!isKnown(event.id)) unknown.append(event.id);
    Event(event.id, event.kind, event.data, event.time);
  }
  return unknown;
}

bool Menu::AboutToShow(int) {
  options_.aboutToShow();
  return false;  // what is new is told when it is there
}

QList<int> Menu::AboutToShowGroup(const QList<int>& ids, QList<int>& unknown) {
  for (const int id : ids) {
    if (!isKnown(id)) unknown.append(id);
  }
  options_.aboutToShow();
  return {};
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuLayout& layout) {
  return writeStructure(argument, layout.id, layout.properties, layout.items);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuLayout& layout) {
  return readStructure(argument, layout.id, layout.properties, layout.items);
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuProperties& item) {
  return writeStructure(argument, item.id, item.properties);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuProperties& item) {
  return readStructure(argument, item.id, item.properties);
}

QDBusArgument& operator<<(QDBusArgument& argument, const MenuEvent& event) {
  return writeStructure(argument, event.id, event.kind, event.data, event.time);
}

const QDBusArgument& operator>>(const QDBusArgument& argument, MenuEvent& event) {
  return readStructure(argument, event.id, event.kind, event.data, event.time);
}

}  // namespace tray
