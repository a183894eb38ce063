#include "widget/widget_entry.h"

#include <memory>
#include <utility>

#include "extensions/login_items.h"
#include "platform/foundation/object.h"
#include "platform/loop/notification.h"
#include "platform/platform.h"
#include "player/love_rating.h"
#include "widget/constants.h"
#include "widget/widget_view_controller.h"

namespace virelune {

namespace {

/// Calls back whenever a loader has read what is on air.
class ProgrammeObserver final : public platform::NSObject {
 public:
  static std::shared_ptr<ProgrammeObserver> observe(std::function<void()> changed) {
    if (!changed) return nullptr;
    auto observer = platform::make<ProgrammeObserver>(std::move(changed));
    platform::current().defaultCenter->addObserver(observer.get(), &ProgrammeObserver::received,
                                                   VLBeats1InfoLoaderNotificationName_Update);
    return observer;
  }

  explicit ProgrammeObserver(std::function<void()> changed) : changed_(std::move(changed)) {}

 private:
  bool received(const platform::NSNotification*) {
    changed_();
    return true;
  }

  const std::function<void()> changed_;
};

}  // namespace

WidgetEntry widgetEntry() {
  const auto made = std::make_shared<std::weak_ptr<VLWidgetViewController>>();
  const auto make = [made] {
    auto controller = platform::make<VLWidgetViewController>();
    *made = controller;
    return controller;
  };
  const auto liveProgramme = [made] {
    const auto controller = made->lock();
    return controller ? controller->liveProgramme() : std::nullopt;
  };
  return {.principalClasses = {{"VLWidgetViewController", make}},
          .isLaunchingAtLogin = vl_isLaunchingAtLogin,
          .setLaunchingAtLogin = vl_setLaunchingAtLogin,
          .setRating =
              [](std::int64_t rating, bool album) {
                return album ? vl_setCurrentAlbumRating(rating) : vl_setCurrentTrackRating(rating);
              },
          .setLoved =
              [](bool loved, bool album) {
                return album ? vl_setCurrentAlbumLoved(loved) : vl_setCurrentTrackLoved(loved);
              },
          .loveRule =
              [] {
                return vl_useAutoLovedRating() ? std::optional(vl_autoLovedRating()) : std::nullopt;
              },
          .setLoveRule = vl_setAutoLoveRule,
          .liveProgramme = liveProgramme,
          .setLiveProgrammeHandler =
              [observer = std::make_shared<std::shared_ptr<ProgrammeObserver>>()](
                  std::function<void()> handler) {
                *observer = ProgrammeObserver::observe(std::move(handler));
              }};
}

}  // namespace virelune
