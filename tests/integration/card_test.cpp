// The whole way from a real player to the panel and back, with the card in the test's own process,
// where its labels can be read.
#include <gmock/gmock.h>

#include <future>

#include "controls/artwork_button.h"
#include "controls/rating_indicator.h"
#include "controls/text_label.h"
#include "desktop/program/composition.h"
#include "radio/url_connection.h"
#include "tests/integration/fake_player.h"
#include "tests/integration/loopback_server.h"
#include "tests/integration/mpv.h"
#include "tests/support/temporary_data_home.h"
#include "widget/widget_entry.h"

namespace tests {
namespace {

/// Everything of a class in a tree of views.
template <class View>
void collect(const platform::NSView& from, std::vector<const View*>& found) {
  for (const auto& child : from.subviews()) {
    if (const auto* match = dynamic_cast<const View*>(child.get())) found.push_back(match);
    collect(*child, found);
  }
}

struct CardOverPlayer : testing::Test {
  /// Shows the card; with a stream server, also lets it use the network.
  void show(const std::string& streamHost = {}) {
    desktop::Composition::Options options{.bundle = desktop::openBundle(VIRELUNE_TEST_BUNDLE),
                                          .widget = virelune::widgetEntry().principalClasses,
                                          .bus = bus.connection(),
                                          .usesNetwork = !streamHost.empty()};
    if (!streamHost.empty()) options.streamHost = streamHost;
    composition.emplace(std::move(options));
    ASSERT_TRUE(composition->player().isRunning());
    card = composition->card();
    ASSERT_NE(card, nullptr);
    card->window().setVisible(true);
  }
  /// Clicks at a fraction of a view's width.
  void click(const platform::NSView& view, double fraction) {
    const auto frame = view.convertRectToWindow(view.bounds());
    for (const auto type :
         {platform::NSEventType::leftMouseDown, platform::NSEventType::leftMouseUp}) {
      card->window().sendEvent({.type = type,
                                .locationInWindow = {frame.minX() + fraction * frame.size.width,
                                                     frame.minY() + frame.size.height / 2},
                                .clickCount = 1});
    }
  }
  template <class View>
  std::vector<const View*> views() const {
    std::vector<const View*> found;
    collect(*card->window().contentView(), found);
    return found;
  }
  std::vector<std::string> labels() const {
    std::vector<std::string> texts;
    for (const auto* label : views<virelune::VLTextLabel>()) {
      texts.push_back(label->text().value_or(""));
    }
    return texts;
  }
  bool hasLabel(const std::string& text) const { return std::ranges::count(labels(), text) > 0; }
  bool showsTrack(const std::string& name) const {
    return waitUntil([&] { return hasLabel(name); }, std::chrono::seconds(30));
  }
  double artworkWidth() const {
    const auto image = views<virelune::VLArtworkButton>().front()->image();
    return image != nullptr ? image->size().width : 0;
  }
  const virelune::VLRatingIndicator& stars() const {
    return *views<virelune::VLRatingIndicator>().front();
  }
  const platform::NSButton& heart() const {
    const auto buttons = views<platform::NSButton>();
    return **std::ranges::find_if(buttons, [](const platform::NSButton* button) {
      return button->frame().size == platform::NSSize{11, 11};
    });
  }
  bool isLoved() const { return heart().image() == platform::imageNamed("VLImageLoveOn"); }

  const PrivateBus bus;
  const TemporaryDataHome dataHome;
  std::optional<desktop::Composition> composition;
  desktop::Card* card = nullptr;
};

TEST_F(CardOverPlayer, ShowsTheTagsOfEachFileAndItsMarksAgainWhenBothHaveQuit) {
  {
    const Mpv mpv(bus);
    show();
    ASSERT_TRUE(showsTrack("First Light"));
    EXPECT_TRUE(hasLabel("The Tides — Harbour"));
    EXPECT_THAT(labels(), testing::Contains(testing::MatchesRegex("00:[0-9]{2} . 0:40")));
    EXPECT_TRUE(waitUntil([&] { return artworkWidth() == 96; }))
        << "the folder's cover, not the placeholder";
    EXPECT_EQ(stars().nowValue(), 0);
    EXPECT_FALSE(isLoved());
    click(stars(), 0.6);
    click(heart(), 0.5);
    composition.reset();
  }
  const Mpv mpv(bus);
  show();
  EXPECT_EQ(stars().nowValue(), 60);
  EXPECT_TRUE(isLoved());
  bus.playerctl({"next"});
  EXPECT_TRUE(waitUntil([&] { return stars().nowValue() == 0 && !isLoved(); }));
  EXPECT_TRUE(showsTrack("夜の海"));
  bus.playerctl({"next"});
  EXPECT_TRUE(showsTrack("Without an Album") && hasLabel("Solo"));
}

TEST_F(CardOverPlayer, EndsWithoutWaitingForAServer) {
  std::promise<void> asked;
  const LoopbackServer silent([&](const Exchange& exchange) {
    asked.set_value();
    exchange.wait(1e6);
  });
  const FakePlayer player(bus, "any", {{"PlaybackStatus", "Stopped"}});
  bool hasBody = true;
  show(silent.host());
  platform::dispatch_get_global_queue()->async([&] {
    platform::NSMutableURLRequest request(*platform::URL::fromText(silent.address("/")));
    request.setTimeoutInterval(1e6);
    hasBody = virelune::vl_sendSynchronousRequest(request).has_value();
  });
  asked.get_future().wait();
  composition.reset();
  EXPECT_FALSE(hasBody);
}

}  // namespace
}  // namespace tests
