#include "widget/widget_entry.h"

#include <memory>

#include "extensions/login_items.h"
#include "player/love_rating.h"
#include "widget/widget_view_controller.h"

namespace virelune {

WidgetEntry widgetEntry() {
  const auto made = std::make_shared<std::weak_ptr<VLWidgetViewController>>();
  const auto make = [made] {
    auto controller = platform::make<VLWidgetViewController>();
    *made = controller;
    return controller;
  };
  const auto showsLiveProgramme = [made] {
    const auto controller = made->lock();
    return controller && controller->showsLiveProgramme();
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
          .showsLiveProgramme = showsLiveProgramme};
}

}  // namespace virelune
