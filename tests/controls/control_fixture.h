// A control in a window, with a target.
#pragma once

#include "tests/support/listener.h"
#include "tests/support/widget_fixture.h"

namespace tests {

template <class Control>
struct ControlFixture : WidgetFixture {
  explicit ControlFixture(platform::NSRect frame) : control(platform::make<Control>(frame)) {
    const auto root = platform::make<platform::NSView>(platform::NSMakeRect(0, 0, 400, 64));
    root->addSubview(control);
    window->setContentView(root);
    control->setTarget(target);
    control->setAction(&Listener::clicked);
  }

  std::shared_ptr<Control> control;
  std::shared_ptr<Listener> target = platform::make<Listener>();
};

/// An indicator, and its value at each of its actions.
template <class Indicator>
struct IndicatorFixture : ControlFixture<Indicator> {
  explicit IndicatorFixture(platform::NSRect frame) : ControlFixture<Indicator>(frame) {
    this->target->onCall = [this] { values.push_back(static_cast<double>(indicator->nowValue())); };
  }
  /// Sends a mouse event at an x of the indicator.
  void mouse(platform::NSEventType type, double x) {
    this->sendMouse(type, {indicator->frame().origin.x + x, indicator->frame().origin.y + 6});
  }
  /// Its portrait without the ground.
  std::string drawn() const {
    const std::string all = portrait(*indicator);
    return all.substr(all.find('\n', 1));
  }

  std::shared_ptr<Indicator>& indicator = this->control;
  std::vector<double> values;
};

}  // namespace tests
