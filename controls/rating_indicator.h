// The five-star rating control and the text form of a rating.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>

#include "controls/view.h"
#include "platform/foundation/image.h"

namespace virelune {

/// Shows a rating from 0 to 100, where each star is worth 20 and a half star 10, and lets the user
/// set one by clicking or dragging across the stars. The action is sent at the release.
class VLRatingIndicator : public VLView {
 public:
  using VLView::VLView;

  // Mouse
  void mouseUp(const platform::NSEvent* event) override;
  void mouseDown(const platform::NSEvent* event) override;
  void mouseDragged(const platform::NSEvent* event) override;

  // Value
  std::int64_t maxValue() const { return 100; }
  /// Takes over a rating, unless the left mouse button is held: then the user's choice stays and
  /// the answer is false.
  bool setNowValue(std::int64_t value);
  std::int64_t nowValue() const;
  /// Rounds to the nearest multiple of drawRatingBase, halves up, within 0…maxValue.
  bool setNowValueImmediately(std::int64_t value);
  bool setNowValueFromEvent(const platform::NSEvent* event);
  /// The rating under a point in the indicator's coordinates, not yet rounded; 0 left of x = 1.
  std::int64_t nowValueFromPoint(platform::NSPoint point) const;
  /// One of the VLRatingType constants; only a user's rating is drawn in full stars.
  std::int64_t ratingType() const { return contentRatingType(); }
  bool setRatingType(std::int64_t type);

  // Accessibility: in halves of a star.
  platform::NSAccessibilityRole accessibilityRole() const override {
    return platform::NSAccessibilityRole::rating;
  }
  std::optional<platform::NSAccessibilityValue> accessibilityValue() const override;
  bool setAccessibilityValue(double value) override;

  // Drawing
  void drawRect(platform::NSRect dirtyRect) override;
  std::int64_t drawRatingCount() const { return 5; }  ///< number of star cells
  std::int64_t drawRatingBase() const { return 10; }  ///< worth of a half star
  /// Draws all cells; the rectangle does not matter.
  bool drawRatingInRect(platform::NSRect rect);
  bool drawRatingAtIndex(std::int64_t index);  ///< false without an image
  platform::NSRect drawRatingRectAtIndex(std::int64_t index) const;
  std::shared_ptr<platform::NSImage> drawRatingImageAtIndex(std::int64_t index) const;

  // Target and action
  /// Sends the action to the target; false when either is missing or the target does not respond.
  bool performTargetAction(NSObject* sender);
  /// The target is not owned.
  bool setTarget(const std::shared_ptr<NSObject>& target);
  std::shared_ptr<NSObject> target() const { return contentActionObject(); }
  bool setAction(platform::Selector action);
  const platform::Selector& action() const { return contentActionSelector(); }

  std::int64_t contentNowValue() const { return contentNowValue_; }
  void setContentNowValue(std::int64_t value) { contentNowValue_ = value; }
  std::shared_ptr<NSObject> contentActionObject() const { return contentActionObject_.lock(); }
  void setContentActionObject(const std::shared_ptr<NSObject>& target) {
    contentActionObject_ = target;
  }
  const platform::Selector& contentActionSelector() const { return contentActionSelector_; }
  void setContentActionSelector(platform::Selector action) {
    contentActionSelector_ = std::move(action);
  }
  std::int64_t contentRatingType() const { return contentRatingType_; }
  void setContentRatingType(std::int64_t type) { contentRatingType_ = type; }

 private:
  std::int64_t contentNowValue_ = 0;
  std::weak_ptr<NSObject> contentActionObject_;
  platform::Selector contentActionSelector_;
  std::int64_t contentRatingType_ = 0;
};

/// A rating as a number of stars: "0", "½", "3", "4½".
std::string vl_descriptionFromRatingValue(std::int64_t value);

}  // namespace virelune
