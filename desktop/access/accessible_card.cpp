#include "desktop/access/accessible_card.h"

#include <QtCore/QTimer>
#include <algorithm>

#include "desktop/window/localized.h"

namespace desktop {

namespace {

using platform::NSAccessibilityRole;

QAccessible::Role roleOf(NSAccessibilityRole role) {
  switch (role) {
    case NSAccessibilityRole::none:
    case NSAccessibilityRole::staticText:
      return QAccessible::StaticText;
    case NSAccessibilityRole::button:
      return QAccessible::Button;
    case NSAccessibilityRole::toggle:
      return QAccessible::CheckBox;
    case NSAccessibilityRole::position:
    case NSAccessibilityRole::rating:
      return QAccessible::Slider;
  }
  return QAccessible::NoRole;
}

}  // namespace

/// The card as a window.
class AccessibleCard::Root final : public QAccessibleObject {
 public:
  explicit Root(AccessibleCard& owner) : QAccessibleObject(&owner.surface_), owner_(owner) {}

  QAccessibleInterface* parent() const override {
    return QAccessible::queryAccessibleInterface(qApp);
  }
  int childCount() const override { return static_cast<int>(owner_.views().size()); }
  QAccessibleInterface* child(int index) const override;
  int indexOfChild(const QAccessibleInterface* child) const override;
  QString text(QAccessible::Text kind) const override {
    return kind == QAccessible::Name ? owner_.surface_.title() : QString();
  }
  QAccessible::Role role() const override { return QAccessible::Window; }
  QAccessible::State state() const override {
    QAccessible::State state;
    state.focusable = true;
    state.active = owner_.surface_.isActive();
    state.invisible = !owner_.surface_.isVisible();
    return state;
  }
  QRect rect() const override { return owner_.surface_.geometry(); }
  QAccessibleInterface* childAt(int x, int y) const override;
  QAccessibleInterface* focusChild() const override;

 private:
  AccessibleCard& owner_;
};

/// A control or a text on it. It outlives its view until it is taken out of Qt's registry.
class AccessibleCard::Part final : public QAccessibleInterface,
                                   public QAccessibleActionInterface,
                                   public QAccessibleValueInterface {
 public:
  Part(AccessibleCard& owner, const ControlView& view) : owner_(owner), view_(view) {}

  ControlView view() const {
    auto view = view_.lock();
    return view && view->window() == &owner_.card_.window() && !view->isHidden() ? view : nullptr;
  }

  bool isValid() const override { return view() != nullptr; }
  QObject* object() const override { return nullptr; }
  QWindow* window() const override { return &owner_.surface_; }
  QAccessibleInterface* parent() const override { return owner_.root_; }
  int childCount() const override { return 0; }
  QAccessibleInterface* child(int) const override { return nullptr; }
  QAccessibleInterface* childAt(int, int) const override { return nullptr; }
  int indexOfChild(const QAccessibleInterface*) const override { return -1; }

  QString text(QAccessible::Text kind) const override {
    const auto shown = view();
    if (!shown) return {};
    if (kind == QAccessible::Name) return QString::fromStdString(shown->accessibilityLabel());
    // Where a number alone says little, its words.
    const bool wantsValue = kind == QAccessible::Value || kind == QAccessible::Description;
    return wantsValue ? QString::fromStdString(valueText(*shown)) : QString();
  }
  void setText(QAccessible::Text, const QString&) override {}

  QRect rect() const override {
    const auto shown = view();
    return shown ? owner_.surface_.placeOnScreen(shown->convertRectToWindow(shown->bounds()))
                 : QRect();
  }

  QAccessible::Role role() const override {
    const auto shown = view();
    return shown ? roleOf(shown->accessibilityRole()) : QAccessible::NoRole;
  }

  QAccessible::State state() const override {
    QAccessible::State state;
    const auto shown = view();
    state.invalid = !shown;
    state.invisible = !shown || !owner_.surface_.isVisible();
    if (!shown) return state;
    const auto value = shown->accessibilityValue();
    const bool isToggle = shown->accessibilityRole() == NSAccessibilityRole::toggle;
    const bool isScale =
        isControl(*shown) && !isToggle && shown->accessibilityRole() != NSAccessibilityRole::button;
    state.focusable = isControl(*shown);
    state.focused = shown == owner_.keyboard_.focus();
    state.checkable = isToggle;
    state.checked = isToggle && value && value->now != 0;
    state.disabled = isScale && !value;
    state.readOnly = !isControl(*shown);
    return state;
  }

  void* interface_cast(QAccessible::InterfaceType type) override {
    const auto shown = view();
    if (!shown || !isControl(*shown)) return nullptr;
    if (type == QAccessible::ActionInterface) return static_cast<QAccessibleActionInterface*>(this);
    const bool hasScale =
        shown->accessibilityValue() && shown->accessibilityRole() != NSAccessibilityRole::toggle;
    if (type == QAccessible::ValueInterface && hasScale) {
      return static_cast<QAccessibleValueInterface*>(this);
    }
    return nullptr;
  }

  // Actions.
  QStringList actionNames() const override {
    const auto shown = view();
    if (!shown) return {};
    switch (shown->accessibilityRole()) {
      case NSAccessibilityRole::button:
        return {pressAction(), setFocusAction()};
      case NSAccessibilityRole::toggle:
        return {toggleAction(), setFocusAction()};
      case NSAccessibilityRole::position:
      case NSAccessibilityRole::rating:
        return {increaseAction(), decreaseAction(), setFocusAction()};
      case NSAccessibilityRole::none:
      case NSAccessibilityRole::staticText:
        return {};
    }
    return {};
  }
  void doAction(const QString& action) override {
    const auto shown = view();
    if (!shown) return;
    if (action == setFocusAction()) owner_.keyboard_.setFocus(shown);
    if (action == pressAction() || action == toggleAction()) press(*shown, Qt::NoModifier);
    if (action == increaseAction()) step(*shown, 1, Qt::NoModifier);
    if (action == decreaseAction()) step(*shown, -1, Qt::NoModifier);
  }
  QStringList keyBindingsForAction(const QString&) const override { return {}; }

  // Value. Stars are told whole, in halves.
  QVariant currentValue() const override { return inUnits(&platform::NSAccessibilityValue::now); }
  QVariant maximumValue() const override {
    return inUnits(&platform::NSAccessibilityValue::maximum);
  }
  QVariant minimumStepSize() const override {
    return inUnits(&platform::NSAccessibilityValue::step);
  }
  QVariant minimumValue() const override { return 0.0; }
  void setCurrentValue(const QVariant& value) override {
    bool isNumber = false;
    const double wanted = value.toDouble(&isNumber);
    if (const auto shown = isNumber ? view() : nullptr) {
      setValue(*shown, wanted / unit(*shown), Qt::NoModifier);
    }
  }

 private:
  static double unit(const platform::NSView& view) {
    return view.accessibilityRole() == NSAccessibilityRole::rating ? 0.5 : 1;
  }
  QVariant inUnits(double platform::NSAccessibilityValue::*field) const {
    const auto shown = view();
    const auto value = shown ? shown->accessibilityValue() : std::nullopt;
    return value ? QVariant((*value).*field * unit(*shown)) : QVariant();
  }

  AccessibleCard& owner_;
  const std::weak_ptr<platform::NSView> view_;
};

QAccessibleInterface* AccessibleCard::Root::child(int index) const {
  const auto views = owner_.views();
  const auto place = static_cast<std::size_t>(index);
  return index >= 0 && place < views.size() ? owner_.partOf(views[place]) : nullptr;
}

int AccessibleCard::Root::indexOfChild(const QAccessibleInterface* child) const {
  const auto views = owner_.views();
  const auto found = std::find_if(views.begin(), views.end(), [&](const ControlView& view) {
    const auto part = owner_.parts_.find(view.get());
    return part != owner_.parts_.end() && part->second == child;
  });
  return found != views.end() ? static_cast<int>(found - views.begin()) : -1;
}

QAccessibleInterface* AccessibleCard::Root::childAt(int x, int y) const {
  for (const ControlView& view : owner_.views()) {
    QAccessibleInterface* part = owner_.partOf(view);
    if (part->rect().contains(x, y)) return part;
  }
  return nullptr;
}

QAccessibleInterface* AccessibleCard::Root::focusChild() const {
  const auto focus = owner_.keyboard_.focus();
  return focus ? owner_.partOf(focus) : nullptr;
}

AccessibleCard::AccessibleCard(CardSurface& surface, Card& card, Keyboard& keyboard)
    : surface_(surface), card_(card), keyboard_(keyboard), changes_(PlayerChanges::observe([this] {
        // The panel has heard of it when the event loop turns again.
        if (root_ != nullptr) QTimer::singleShot(0, &surface_, [this] { tellChanges(); });
      })) {
  surface_.setAccessibleRoot([this]() -> QAccessibleInterface* {
    if (root_ == nullptr) {
      root_ = std::make_unique<Root>(*this).release();
      QAccessible::registerAccessibleInterface(root_);
      tellChanges();
    }
    return root_;
  });
  keyboard_.setFocusHandler([this](const ControlView& control) { tellFocus(control); });
}

AccessibleCard::~AccessibleCard() {
  keyboard_.setFocusHandler(nullptr);
  surface_.setAccessibleRoot(nullptr);
  for (const auto& [view, part] : parts_) {
    QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(part));
  }
  if (root_ != nullptr) QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(root_));
}

AccessibleCard::Part* AccessibleCard::partOf(const ControlView& view) {
  Part*& part = parts_[view.get()];
  if (part == nullptr) {
    part = std::make_unique<Part>(*this, view).release();
    QAccessible::registerAccessibleInterface(part);
  }
  return part;
}

/// Parts whose views have gone; another view may come to lie where one was.
void AccessibleCard::forget() {
  for (auto part = parts_.begin(); part != parts_.end();) {
    if (part->second->isValid()) {
      ++part;
      continue;
    }
    told_.erase(part->first);
    QAccessible::deleteAccessibleInterface(QAccessible::uniqueId(part->second));
    part = parts_.erase(part);
  }
}

void AccessibleCard::tellChanges() {
  if (root_ == nullptr) return;
  forget();
  const auto shown = views();
  std::vector<const platform::NSView*> now;
  for (const ControlView& view : shown) now.push_back(view.get());
  if (std::exchange(toldViews_, now) != now) {
    QAccessibleEvent reordered(root_, QAccessible::ObjectReorder);
    QAccessible::updateAccessibility(&reordered);
  }
  for (const ControlView& view : shown) {
    const auto value = view->accessibilityValue();
    // Time passes by itself.
    const bool isTime = view->accessibilityRole() == NSAccessibilityRole::position;
    const Told told{view->accessibilityLabel(), value && !isTime ? value->now : 0};
    const auto before = told_.find(view.get());
    const bool isNew = before == told_.end();
    const Told was = isNew ? told : before->second;
    told_[view.get()] = told;
    if (was.name != told.name) {
      QAccessibleEvent renamed(partOf(view), QAccessible::NameChanged);
      QAccessible::updateAccessibility(&renamed);
    }
    if (was.value == told.value) continue;
    if (view->accessibilityRole() == NSAccessibilityRole::toggle) {
      QAccessible::State checked;
      checked.checked = true;
      QAccessibleStateChangeEvent changed(partOf(view), checked);
      QAccessible::updateAccessibility(&changed);
    } else {
      QAccessibleValueChangeEvent changed(partOf(view), partOf(view)->currentValue());
      QAccessible::updateAccessibility(&changed);
    }
  }
}

void AccessibleCard::tellFocus(const ControlView& control) {
  if (root_ == nullptr || !control) return;
  QAccessibleEvent focused(partOf(control), QAccessible::Focus);
  QAccessible::updateAccessibility(&focused);
}

}  // namespace desktop
