// The slim row on top of the card: the widget's name, the edit toggle and the close control.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>

#include "platform/view/button.h"

namespace desktop {

/// A small round control that lights up under the pointer.
class CardHeaderButton final : public platform::NSButton {
 public:
  explicit CardHeaderButton(platform::NSRect frame);

  void setHovered(bool hovered);
  /// Stays lit while what it toggles is on.
  void setOn(bool on);
  void drawRect(platform::NSRect dirtyRect) override;

 private:
  bool hovered_ = false;
  bool on_ = false;
};

/// The header's view. Where it is not a control, the card is moved by it.
class CardHeader final : public platform::NSView {
 public:
  CardHeader(platform::NSRect frame, std::string title);
  bool init() override;

  /// Called when the user wants editing to begin or to end; without a handler there is no toggle.
  void setEditHandler(std::function<void()> handler);
  void setCloseHandler(std::function<void()> handler) { closeHandler_ = std::move(handler); }
  void setEditing(bool editing);

  /// True when the point, in window coordinates, takes hold of the card.
  bool isHandle(platform::NSPoint pointInWindow);
  /// Tells where the pointer is, in window coordinates; none when it has left.
  void pointerMoved(std::optional<platform::NSPoint> pointInWindow);

  void drawRect(platform::NSRect dirtyRect) override;

  // Actions of the controls.
  bool clickedEditButton(platform::NSObject* sender);
  bool clickedCloseButton(platform::NSObject* sender);

 private:
  std::shared_ptr<CardHeaderButton> addButton(double x, const char* imageName,
                                              platform::Selector action);

  const std::string title_;
  std::shared_ptr<CardHeaderButton> editButton_;
  std::shared_ptr<CardHeaderButton> closeButton_;
  std::function<void()> editHandler_;
  std::function<void()> closeHandler_;
};

}  // namespace desktop
