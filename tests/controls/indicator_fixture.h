// What the tests of the two indicators share.
#pragma once

#include <memory>
#include <vector>

#include "tests/support/widget_fixture.h"

namespace tests {

/// Writes down an indicator's value at each of its actions.
template <class Indicator>
class ActionTarget : public platform::NSObject {
 public:
  bool acted(platform::NSObject* sender) {
    values.push_back(static_cast<double>(dynamic_cast<Indicator*>(sender)->nowValue()));
    return false;
  }
  std::vector<double> values;
};

/// An indicator in a window, with a target.
template <class Indicator>
class IndicatorFixture : public WidgetFixture {
 protected:
  explicit IndicatorFixture(platform::NSRect frame) : indicator(platform::make<Indicator>(frame)) {
    const auto root = platform::make<platform::NSView>(platform::NSMakeRect(0, 0, 400, 64));
    root->addSubview(indicator);
    window->setContentView(root);
    indicator->setTarget(target);
    indicator->setAction(&ActionTarget<Indicator>::acted);
  }
  /// Sends a mouse event at an x of the indicator.
  void mouse(platform::NSEventType type, double x) {
    sendMouse(type, {indicator->frame().origin.x + x, indicator->frame().origin.y + 6});
  }
  /// What the indicator draws on top of its background.
  std::vector<DrawingStep> drawn() {
    RecordingCanvas canvas;
    indicator->displayRect(canvas, indicator->bounds());
    return {canvas.steps().begin() + 1, canvas.steps().end()};
  }

  std::shared_ptr<Indicator> indicator;
  std::shared_ptr<ActionTarget<Indicator>> target = platform::make<ActionTarget<Indicator>>();
};

}  // namespace tests
