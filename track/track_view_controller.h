// The now-playing panel.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "controls/artwork_button.h"
#include "controls/progress_indicator.h"
#include "controls/rating_indicator.h"
#include "controls/text_label.h"
#include "platform/foundation/font.h"
#include "platform/loop/run_loop.h"
#include "platform/view/button.h"
#include "player/itunes.h"
#include "radio/beats1_info_loader.h"
#include "widget/view_controller.h"

namespace virelune {

/// Shows the player's current track in ten controls, follows it while the panel is on screen, and
/// turns clicks into commands to the player. Everything is read from the player at the moment it
/// is shown; nothing is kept. Main thread only.
class VLTrackViewController : public VLViewController {
 public:
  VLTrackViewController() = default;
  ~VLTrackViewController() override;

  // Layout (track_layout.cpp). The controls are made once, at creation, and never move. A control
  // for which an image, a font or a colour is missing is left out: its prepared… answers null,
  // its prepare… false.

  bool prepare() override;
  bool prepareArtworkButton();
  bool prepareNameTextLabel();
  bool prepareArtistTextLabel();
  bool prepareController();  ///< next, play and previous
  bool prepareNextButton();
  bool preparePlayButton();
  bool preparePreviousButton();
  bool prepareProgressIndicator();
  bool prepareLoveButton();
  bool prepareRatingIndicator();
  bool prepareTimeTextLabel();

  std::shared_ptr<VLArtworkButton> preparedArtworkButton();
  std::shared_ptr<VLTextLabel> preparedNameTextLabel();
  std::shared_ptr<VLTextLabel> preparedArtistTextLabel();
  std::shared_ptr<platform::NSButton> preparedNextButton();
  std::shared_ptr<platform::NSButton> preparedPlayButton();
  std::shared_ptr<platform::NSButton> preparedPreviousButton();
  std::shared_ptr<VLProgressIndicator> preparedProgressIndicator();
  std::shared_ptr<platform::NSButton> preparedLoveButton();
  std::shared_ptr<VLRatingIndicator> preparedRatingIndicator();
  std::shared_ptr<VLTextLabel> preparedTimeTextLabel();

  platform::NSRect preparedViewFrame() override;  ///< 320 × 64 points
  platform::NSRect preparedArtworkButtonFrame() const;
  platform::NSRect preparedNameTextLabelFrame() const;
  platform::NSRect preparedArtistTextLabelFrame() const;
  platform::NSRect preparedNextButtonFrame() const;
  platform::NSRect preparedPlayButtonFrame() const;
  platform::NSRect preparedPreviousButtonFrame() const;
  platform::NSRect preparedProgressIndicatorFrame() const;  ///< as wide as the root view
  platform::NSRect preparedLoveButtonFrame() const;
  platform::NSRect preparedRatingIndicatorFrame() const;
  platform::NSRect preparedTimeTextLabelFrame() const;

  virtual std::optional<platform::NSFont> preparedNameTextLabelFont() const;
  virtual std::optional<platform::NSFont> preparedArtistTextLabelFont() const;
  virtual std::optional<platform::NSFont> preparedTimeTextLabelFont() const;
  virtual std::optional<platform::NSColor> preparedNameTextLabelTextColor() const;
  virtual std::optional<platform::NSColor> preparedArtistTextLabelTextColor() const;
  virtual std::optional<platform::NSColor> preparedTimeTextLabelTextColor() const;

  // Readout (track_readout.cpp). Each value is asked for afresh; a text is never empty. While the
  // live station plays, what its programme tells comes before what the player tells.

  std::shared_ptr<AEiTunesApplication> infoApp() const;  ///< null unless the player
  std::shared_ptr<AEiTunesTrack> infoTrack() const;      ///< runs and is not stopped

  std::optional<std::string> infoTrackName() const;
  std::optional<std::string> infoTrackArtist() const;
  std::optional<std::string> infoTrackAlbum() const;
  std::optional<std::string> infoTrackAlbumArtist() const;
  std::optional<std::string> infoTrackArtistWithAlbum() const;  ///< "artist — album"
  std::optional<std::string> infoTrackTimeDescription() const;  ///< "01:05 | 3:45"
  bool infoTrackHasArtwork() const;
  std::shared_ptr<platform::NSImage> infoTrackArtwork() const;
  std::shared_ptr<platform::NSImage> infoTrackPlayImage() const;  ///< what a click would do
  double infoTrackDuration() const;                               ///< seconds
  double infoTrackPlayerPosition() const;                         ///< seconds
  bool infoTrackLoved() const;
  std::int64_t infoTrackRating() const;      ///< 0…100
  std::int64_t infoTrackRatingType() const;  ///< one of the VLRatingType constants

  std::optional<std::string> infoBeats1TrackName() const;
  std::optional<std::string> infoBeats1TrackArtist() const;
  std::optional<std::string> infoBeats1TrackAlbum() const;
  std::shared_ptr<platform::NSImage> infoBeats1TrackArtwork() const;
  bool infoBeats1TrackHasAlbumOrArtist() const;

  // Refresh (track_refresh.cpp). The update of a single control answers false when the panel does
  // not have it; an update that is made of several always answers true.

  void viewWillAppear() override;
  void viewWillDisappear() override;

  bool update(platform::NSObject* sender) override;  ///< everything
  bool updateNameTextLabel();
  bool updateArtistTextLabel();
  bool updateTimeTextLabel();
  bool updateArtworkButton();
  bool updatePlayButton();
  bool updateProgressIndicator();
  bool updateProgressIndicatorMaxValue();
  bool updateProgressIndicatorNowValue();
  bool updateLoveButton();
  bool updateRatingIndicator();
  bool updateRatingIndicatorType();
  bool updateRatingIndicatorNowValue();

  // Actions (track_actions.cpp). Clicks answer false when the player gives nothing to act
  // on, those on the bar and the stars also when the sender is not the panel's own control. The
  // panel changes with the player's notification, except that a seek, love and a rating show their
  // outcome at once. Option makes love and rating act
  // on the album, and the artwork open the store.

  bool clickedArtworkButton(platform::NSObject* sender);
  bool clickedNextButton(platform::NSObject* sender);
  bool clickedPlayButton(platform::NSObject* sender);
  bool clickedPreviousButton(platform::NSObject* sender);
  bool clickedProgressIndicator(platform::NSObject* sender);
  bool clickedLoveButton(platform::NSObject* sender);
  bool clickedRatingIndicator(platform::NSObject* sender);
  /// Opens the store's page of the artist, away from the main thread; false without an artist.
  bool openItmsForPlayingTrack(platform::NSObject* sender);

  // Heartbeat (track_refresh.cpp): while the panel is shown, position and time text are refreshed
  // one second after the refresh before.

  bool startHeartbeatTimer(platform::NSObject* sender);
  bool stopHeartbeatTimer(platform::NSObject* sender);  ///< false when there was none
  bool firedHeartbeatTimer(platform::NSTimer* timer);

  // Live station (track_live.cpp): while it plays and the panel is shown, a loader follows its
  // programme.

  /// Replaces the loader by a fresh one; when that one cannot start, the one before goes on.
  bool startBeats1InfoLoader(platform::NSObject* sender);
  bool stopBeats1InfoLoader(platform::NSObject* sender);  ///< false when there was none
  bool startBeats1InfoLoaderNotificationObserver();
  bool stopBeats1InfoLoaderNotificationObserver();
  bool receivedBeats1InfoLoaderNotification(const platform::NSNotification* notification);
  bool updateBeats1Info();  ///< what the programme describes
  std::optional<LiveProgramme> liveProgramme() const override;

  // Fields

  const std::shared_ptr<VLTextLabel>& contentNameTextLabel() const { return contentNameTextLabel_; }
  void setContentNameTextLabel(std::shared_ptr<VLTextLabel> label) {
    contentNameTextLabel_ = std::move(label);
  }
  const std::shared_ptr<VLTextLabel>& contentArtistTextLabel() const {
    return contentArtistTextLabel_;
  }
  void setContentArtistTextLabel(std::shared_ptr<VLTextLabel> label) {
    contentArtistTextLabel_ = std::move(label);
  }
  const std::shared_ptr<VLTextLabel>& contentTimeTextLabel() const { return contentTimeTextLabel_; }
  void setContentTimeTextLabel(std::shared_ptr<VLTextLabel> label) {
    contentTimeTextLabel_ = std::move(label);
  }
  const std::shared_ptr<VLArtworkButton>& contentArtworkButton() const {
    return contentArtworkButton_;
  }
  void setContentArtworkButton(std::shared_ptr<VLArtworkButton> button) {
    contentArtworkButton_ = std::move(button);
  }
  const std::shared_ptr<platform::NSButton>& contentPlayButton() const {
    return contentPlayButton_;
  }
  void setContentPlayButton(std::shared_ptr<platform::NSButton> button) {
    contentPlayButton_ = std::move(button);
  }
  const std::shared_ptr<VLProgressIndicator>& contentProgressIndicator() const {
    return contentProgressIndicator_;
  }
  void setContentProgressIndicator(std::shared_ptr<VLProgressIndicator> indicator) {
    contentProgressIndicator_ = std::move(indicator);
  }
  const std::shared_ptr<platform::NSButton>& contentLoveButton() const {
    return contentLoveButton_;
  }
  void setContentLoveButton(std::shared_ptr<platform::NSButton> button) {
    contentLoveButton_ = std::move(button);
  }
  const std::shared_ptr<VLRatingIndicator>& contentRatingIndicator() const {
    return contentRatingIndicator_;
  }
  void setContentRatingIndicator(std::shared_ptr<VLRatingIndicator> indicator) {
    contentRatingIndicator_ = std::move(indicator);
  }
  const std::shared_ptr<platform::NSTimer>& contentHeartbeatTimer() const {
    return contentHeartbeatTimer_;
  }
  void setContentHeartbeatTimer(std::shared_ptr<platform::NSTimer> timer) {
    contentHeartbeatTimer_ = std::move(timer);
  }
  const std::shared_ptr<VLBeats1InfoLoader>& contentBeats1InfoLoader() const {
    return contentBeats1InfoLoader_;
  }
  void setContentBeats1InfoLoader(std::shared_ptr<VLBeats1InfoLoader> loader) {
    contentBeats1InfoLoader_ = std::move(loader);
  }

 private:
  using LoaderText = std::optional<std::string> (VLTrackViewController::*)() const;
  using TrackText = std::optional<std::string> (AEiTunesTrack::*)() const;
  std::optional<std::string> liveOrTrackText(LoaderText loaderText, TrackText trackText) const;

  std::shared_ptr<platform::NSButton> preparedImageButton(const char* imageName,
                                                          platform::NSRect frame,
                                                          platform::Selector action,
                                                          const char* labelKey);
  template <class Control>
  bool installControl(std::shared_ptr<Control> control,
                      void (VLTrackViewController::*store)(std::shared_ptr<Control>) = nullptr);

  std::shared_ptr<VLTextLabel> contentNameTextLabel_;
  std::shared_ptr<VLTextLabel> contentArtistTextLabel_;
  std::shared_ptr<VLTextLabel> contentTimeTextLabel_;
  std::shared_ptr<VLArtworkButton> contentArtworkButton_;
  std::shared_ptr<platform::NSButton> contentPlayButton_;
  std::shared_ptr<VLProgressIndicator> contentProgressIndicator_;
  std::shared_ptr<platform::NSButton> contentLoveButton_;
  std::shared_ptr<VLRatingIndicator> contentRatingIndicator_;
  std::shared_ptr<platform::NSTimer> contentHeartbeatTimer_;
  std::shared_ptr<VLBeats1InfoLoader> contentBeats1InfoLoader_;
};

}  // namespace virelune
