#include "extensions/colors.h"
#include "extensions/strings.h"
#include "platform/application/bundle.h"
#include "platform/foundation/image.h"
#include "track/track_view_controller.h"
#include "widget/constants.h"
#include "widget/panel_button.h"

namespace virelune {

using platform::NSButton;
using platform::NSColor;
using platform::NSFont;
using platform::NSMakeRect;
using platform::NSRect;

namespace {

/// Of the controls that step back behind the texts.
constexpr double dimmedAlpha = 0.5;

std::string localizedString(const char* key) {
  return vl_localizedString(key).value_or(std::string());
}

std::shared_ptr<VLTextLabel> preparedTextLabel(const std::optional<NSFont>& font,
                                               const std::optional<NSColor>& color, NSRect frame,
                                               platform::NSTextAlignment alignment) {
  if (!font || !color) return nullptr;
  auto label = platform::make<VLTextLabel>(frame);
  label->setTextAlignment(alignment);
  label->setTextFont(font);
  label->setTextColor(color);
  return label;
}

}  // namespace

bool VLTrackViewController::prepare() {
  VLViewController::prepare();
  prepareArtworkButton();
  prepareNameTextLabel();
  prepareArtistTextLabel();
  prepareController();
  prepareProgressIndicator();
  prepareLoveButton();
  prepareRatingIndicator();
  prepareTimeTextLabel();
  return true;
}

// Installing

template <class Control>
bool VLTrackViewController::installControl(
    std::shared_ptr<Control> control,
    void (VLTrackViewController::*store)(std::shared_ptr<Control>)) {
  if (!control) return false;
  if (store != nullptr) (this->*store)(control);
  view()->addSubview(control);
  return true;
}

bool VLTrackViewController::prepareArtworkButton() {
  return view() &&
         installControl(preparedArtworkButton(), &VLTrackViewController::setContentArtworkButton);
}

bool VLTrackViewController::prepareNameTextLabel() {
  return view() &&
         installControl(preparedNameTextLabel(), &VLTrackViewController::setContentNameTextLabel);
}

bool VLTrackViewController::prepareArtistTextLabel() {
  return view() && installControl(preparedArtistTextLabel(),
                                  &VLTrackViewController::setContentArtistTextLabel);
}

bool VLTrackViewController::prepareController() {
  prepareNextButton();
  preparePlayButton();
  preparePreviousButton();
  return true;
}

bool VLTrackViewController::prepareNextButton() {
  return view() && installControl(preparedNextButton());
}

bool VLTrackViewController::preparePlayButton() {
  return view() &&
         installControl(preparedPlayButton(), &VLTrackViewController::setContentPlayButton);
}

bool VLTrackViewController::preparePreviousButton() {
  return view() && installControl(preparedPreviousButton());
}

bool VLTrackViewController::prepareProgressIndicator() {
  return view() && installControl(preparedProgressIndicator(),
                                  &VLTrackViewController::setContentProgressIndicator);
}

bool VLTrackViewController::prepareLoveButton() {
  return view() &&
         installControl(preparedLoveButton(), &VLTrackViewController::setContentLoveButton);
}

bool VLTrackViewController::prepareRatingIndicator() {
  return view() && installControl(preparedRatingIndicator(),
                                  &VLTrackViewController::setContentRatingIndicator);
}

bool VLTrackViewController::prepareTimeTextLabel() {
  return view() &&
         installControl(preparedTimeTextLabel(), &VLTrackViewController::setContentTimeTextLabel);
}

// Making

std::shared_ptr<VLArtworkButton> VLTrackViewController::preparedArtworkButton() {
  auto button = platform::make<VLArtworkButton>(preparedArtworkButtonFrame());
  configurePanelButton(*button, nullptr, shared_from_this(),
                       &VLTrackViewController::clickedArtworkButton);
  button->setAccessibilityLabel(localizedString("0005.0001"));
  button->setWantsLayer(true);
  button->layer()->cornerRadius = 3;
  button->layer()->masksToBounds = true;
  return button;
}

std::shared_ptr<VLTextLabel> VLTrackViewController::preparedNameTextLabel() {
  return preparedTextLabel(preparedNameTextLabelFont(), preparedNameTextLabelTextColor(),
                           preparedNameTextLabelFrame(), platform::NSTextAlignment::left);
}

std::shared_ptr<VLTextLabel> VLTrackViewController::preparedArtistTextLabel() {
  return preparedTextLabel(preparedArtistTextLabelFont(), preparedArtistTextLabelTextColor(),
                           preparedArtistTextLabelFrame(), platform::NSTextAlignment::left);
}

std::shared_ptr<VLTextLabel> VLTrackViewController::preparedTimeTextLabel() {
  auto label = preparedTextLabel(preparedTimeTextLabelFont(), preparedTimeTextLabelTextColor(),
                                 preparedTimeTextLabelFrame(), platform::NSTextAlignment::center);
  // The bar tells the same in words.
  if (label) label->setAccessibilityHidden(true);
  return label;
}

std::shared_ptr<NSButton> VLTrackViewController::preparedImageButton(const char* imageName,
                                                                     NSRect frame,
                                                                     platform::Selector action,
                                                                     const char* labelKey) {
  auto image = platform::imageNamed(imageName);
  if (!image) return nullptr;
  auto button = platform::make<NSButton>(frame);
  configurePanelButton(*button, std::move(image), shared_from_this(), std::move(action));
  button->setAccessibilityLabel(localizedString(labelKey));
  button->setAlphaValue(dimmedAlpha);
  return button;
}

std::shared_ptr<NSButton> VLTrackViewController::preparedNextButton() {
  return preparedImageButton(VLImageControllerNext, preparedNextButtonFrame(),
                             &VLTrackViewController::clickedNextButton, "0004.0005");
}

std::shared_ptr<NSButton> VLTrackViewController::preparedPlayButton() {
  auto button = platform::make<NSButton>(preparedPlayButtonFrame());
  configurePanelButton(*button, nullptr, shared_from_this(),
                       &VLTrackViewController::clickedPlayButton);
  button->setAccessibilityLabel(localizedString("0004.0001"));
  button->setAlphaValue(dimmedAlpha);
  return button;
}

std::shared_ptr<NSButton> VLTrackViewController::preparedPreviousButton() {
  return preparedImageButton(VLImageControllerPrevious, preparedPreviousButtonFrame(),
                             &VLTrackViewController::clickedPreviousButton, "0004.0006");
}

std::shared_ptr<NSButton> VLTrackViewController::preparedLoveButton() {
  return preparedImageButton(VLImageLoveOff, preparedLoveButtonFrame(),
                             &VLTrackViewController::clickedLoveButton, "0004.0009");
}

std::shared_ptr<VLProgressIndicator> VLTrackViewController::preparedProgressIndicator() {
  auto indicator = platform::make<VLProgressIndicator>(preparedProgressIndicatorFrame());
  indicator->setTarget(shared_from_this());
  indicator->setAction(&VLTrackViewController::clickedProgressIndicator);
  indicator->setColor(NSColor::grayColor());
  indicator->setAccessibilityLabel(localizedString("0005.0002"));
  return indicator;
}

std::shared_ptr<VLRatingIndicator> VLTrackViewController::preparedRatingIndicator() {
  auto indicator = platform::make<VLRatingIndicator>(preparedRatingIndicatorFrame());
  indicator->setTarget(shared_from_this());
  indicator->setAction(&VLTrackViewController::clickedRatingIndicator);
  indicator->setAlphaValue(dimmedAlpha);
  indicator->setAccessibilityLabel(localizedString("0005.0003"));
  return indicator;
}

// Places

NSRect VLTrackViewController::preparedViewFrame() {
  NSRect frame = VLViewController::preparedViewFrame();
  frame.size.height = 64;
  return frame;
}

NSRect VLTrackViewController::preparedArtworkButtonFrame() const {
  return NSMakeRect(6, 9, 50, 50);
}

NSRect VLTrackViewController::preparedNameTextLabelFrame() const {
  return NSMakeRect(59, 25, 191, 20);
}

NSRect VLTrackViewController::preparedArtistTextLabelFrame() const {
  return NSMakeRect(59, 45, 258, 20);
}

NSRect VLTrackViewController::preparedNextButtonFrame() const {
  return NSMakeRect(290, 27, 20, 16);
}

NSRect VLTrackViewController::preparedPlayButtonFrame() const {
  return NSMakeRect(270, 27, 20, 16);
}

NSRect VLTrackViewController::preparedPreviousButtonFrame() const {
  return NSMakeRect(250, 27, 20, 16);
}

NSRect VLTrackViewController::preparedProgressIndicatorFrame() const {
  if (!view()) return platform::NSZeroRect;
  constexpr double barHeight = 14;  // its lower half lies outside the root view
  return NSMakeRect(0, -barHeight / 2, view()->frame().size.width, barHeight);
}

NSRect VLTrackViewController::preparedLoveButtonFrame() const { return NSMakeRect(64, 10, 11, 11); }

NSRect VLTrackViewController::preparedRatingIndicatorFrame() const {
  return NSMakeRect(79, 10, 65, 12);
}

NSRect VLTrackViewController::preparedTimeTextLabelFrame() const {
  return NSMakeRect(240, 8, 80, 15);
}

// Fonts and colours

std::optional<NSFont> VLTrackViewController::preparedNameTextLabelFont() const {
  return NSFont::systemFontOfSize(16);
}

std::optional<NSFont> VLTrackViewController::preparedArtistTextLabelFont() const {
  return NSFont::systemFontOfSize(12);
}

std::optional<NSFont> VLTrackViewController::preparedTimeTextLabelFont() const {
  return NSFont::monospacedDigitSystemFontOfSize_weight(10, platform::NSFontWeight::regular);
}

std::optional<NSColor> VLTrackViewController::preparedNameTextLabelTextColor() const {
  return vl_widgetTextColor();
}

std::optional<NSColor> VLTrackViewController::preparedArtistTextLabelTextColor() const {
  return vl_widgetTextColor();
}

std::optional<NSColor> VLTrackViewController::preparedTimeTextLabelTextColor() const {
  return vl_widgetTextColor();
}

}  // namespace virelune
