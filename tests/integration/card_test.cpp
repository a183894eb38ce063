// The whole way from a real player to the panel and back: first with the card in the test's own
// process, where its labels can be read, then the program itself in a window with a pointer.
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <future>
#include <optional>
#include <stdexcept>

#include "controls/artwork_button.h"
#include "controls/rating_indicator.h"
#include "controls/text_label.h"
#include "desktop/program/composition.h"
#include "desktop/window/card_style.h"
#include "platform/loop/dispatch.h"
#include "radio/url_connection.h"
#include "tests/integration/encoded_station.h"
#include "tests/integration/fake_player.h"
#include "tests/integration/mpv.h"
#include "tests/support/temporary_data_home.h"
#include "widget/widget_entry.h"

namespace tests {
namespace {

using testing::Contains;

constexpr double trackHeight = 64 + desktop::cardHeaderHeight;
constexpr double informationHeight = 30 + desktop::cardHeaderHeight;

/// Everything of a class in a tree of views.
template <class View>
void collect(const platform::NSView& from, std::vector<const View*>& found) {
  for (const auto& child : from.subviews()) {
    if (const auto* match = dynamic_cast<const View*>(child.get())) found.push_back(match);
    collect(*child, found);
  }
}

class CardOverPlayer : public testing::Test {
 protected:
  /// Shows the card; with a stream server, also lets it use the network.
  void show(const std::string& streamHost = {}) {
    desktop::Composition::Options options{.bundle = desktop::openBundle(VIRELUNE_TEST_BUNDLE),
                                          .widget = virelune::widgetEntry().principalClasses,
                                          .bus = bus.connection(),
                                          .usesNetwork = !streamHost.empty()};
    if (!streamHost.empty()) options.streamHost = streamHost;
    composition_.emplace(std::move(options));
    ASSERT_TRUE(composition_->player().isRunning());
    card = composition_->card();
    ASSERT_NE(card, nullptr);
    card->window().setVisible(true);
  }

  /// Ends the widget with all that it stands on.
  void quit() {
    card = nullptr;
    composition_.reset();
  }

  /// Clicks at a fraction of a view's width.
  void click(const platform::NSView& view, double fraction) {
    const auto frame = view.convertRectToWindow(view.bounds());
    platform::NSEvent event;
    event.locationInWindow = {frame.minX() + fraction * frame.size.width,
                              frame.minY() + frame.size.height / 2};
    event.clickCount = 1;
    event.type = platform::NSEventType::leftMouseDown;
    card->window().sendEvent(event);
    event.type = platform::NSEventType::leftMouseUp;
    card->window().sendEvent(event);
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

  /// The text of the information panel.
  std::string information() const {
    for (const auto* button : views<platform::NSButton>()) {
      if (button->attributedTitle() && !button->attributedTitle()->text.empty()) {
        return button->attributedTitle()->text;
      }
    }
    return {};
  }

  bool hasLabel(const std::string& text) const {
    const auto texts = labels();
    return std::find(texts.begin(), texts.end(), text) != texts.end();
  }

  bool hasHeight(double height) const { return card->size().height == height; }

  const PrivateBus bus;
  desktop::Card* card = nullptr;

 private:
  const TemporaryDataHome dataHome_;
  std::optional<desktop::Composition> composition_;
};

TEST_F(CardOverPlayer, ShowsTheTagsOfTheFileAndThoseOfTheNextOne) {
  const Mpv mpv(bus);
  show();
  EXPECT_TRUE(hasHeight(trackHeight));
  EXPECT_TRUE(hasLabel("First Light"));
  EXPECT_TRUE(hasLabel("The Tides — Harbour"));
  EXPECT_THAT(labels(), Contains(testing::MatchesRegex("00:[0-9]{2} . 0:40")));
  ASSERT_EQ(views<virelune::VLArtworkButton>().size(), 1U);
  const auto cover = views<virelune::VLArtworkButton>().front()->image();
  ASSERT_NE(cover, nullptr);
  EXPECT_EQ(cover->size().width, 96);  // the folder's cover, not the placeholder

  bus.playerctl({"next"});
  EXPECT_TRUE(waitUntil([&] { return hasLabel("夜の海"); }));
  bus.playerctl({"next"});
  EXPECT_TRUE(waitUntil([&] { return hasLabel("Without an Album") && hasLabel("Solo"); }));
}

TEST_F(CardOverPlayer, ShowsTheProgrammeWhileTheLiveStationPlays) {
  const EncodedStation station("夜明けの交差点", "水色レイディオ", "夏の終わりの地図");
  const Mpv mpv(bus, QString::fromStdString(station.streamAddress()), "Beats 1");
  show(station.host());
  EXPECT_TRUE(hasLabel("Beats 1"));
  // mpv takes what has arrived for the length; it takes a few segments to see that it is none.
  constexpr std::chrono::seconds patience{30};
  EXPECT_TRUE(waitUntil([&] { return hasLabel("夜明けの交差点"); }, patience));
  EXPECT_TRUE(hasLabel("水色レイディオ — 夏の終わりの地図"));
  const auto artwork = views<virelune::VLArtworkButton>().front()->image();
  ASSERT_NE(artwork, nullptr);
  EXPECT_EQ(artwork->size().width, 96);  // the programme's, not the station's
}

TEST_F(CardOverPlayer, StarsAndHeartAreBackWhenBothHaveQuitAndStartedAgain) {
  const auto rating = [&] { return views<virelune::VLRatingIndicator>().front(); };
  const auto heart = [&] {
    for (const auto* button : views<platform::NSButton>()) {
      if (button->frame().size == platform::NSSize{11, 11}) return button;
    }
    throw std::logic_error("the panel has no heart");
  };
  const auto isLoved = [&] { return heart()->image() == platform::imageNamed("VLImageLoveOn"); };
  {
    const Mpv mpv(bus);
    show();
    EXPECT_EQ(rating()->nowValue(), 0);
    EXPECT_FALSE(isLoved());
    click(*rating(), 0.6);
    click(*heart(), 0.5);
    EXPECT_EQ(rating()->nowValue(), 60);
    EXPECT_TRUE(isLoved());
    quit();
  }
  const Mpv mpv(bus);
  show();
  EXPECT_EQ(rating()->nowValue(), 60);
  EXPECT_TRUE(isLoved());
  bus.playerctl({"next"});
  EXPECT_TRUE(waitUntil([&] { return rating()->nowValue() == 0 && !isLoved(); }));
}

TEST_F(CardOverPlayer, StopEndAndReturnOfThePlayerChangeThePanel) {
  auto mpv = std::make_unique<Mpv>(bus);
  show();
  ASSERT_TRUE(hasHeight(trackHeight));
  bus.playerctl({"stop"});
  EXPECT_TRUE(waitUntil([&] { return hasHeight(informationHeight); }));
  const std::string stopped = information();
  EXPECT_NE(stopped, "");

  mpv->program().send(SIGKILL);
  EXPECT_TRUE(waitUntil([&] { return information() != stopped; }));
  EXPECT_NE(information(), "");

  mpv = std::make_unique<Mpv>(bus);
  EXPECT_TRUE(waitUntil([&] { return hasHeight(trackHeight) && hasLabel("First Light"); }));
}

TEST_F(CardOverPlayer, AHangingPlayerLeavesTheCardAliveAndIsShownAgain) {
  const Mpv mpv(bus);
  show();
  mpv.program().send(SIGSTOP);
  EXPECT_TRUE(waitUntil([&] { return hasHeight(informationHeight); }));
  mpv.program().send(SIGCONT);
  EXPECT_TRUE(waitUntil([&] { return hasHeight(trackHeight) && hasLabel("First Light"); }));
}

TEST_F(CardOverPlayer, AboutStaysWhileEditingWhateverThePlayerDoes) {
  const Mpv mpv(bus);
  show();
  card->setEditing(true);
  EXPECT_FALSE(hasLabel("First Light"));
  bus.playerctl({"stop"});
  ASSERT_TRUE(waitUntil([&] { return bus.playerctl({"status"}) == "Stopped"; }));
  card->update();
  EXPECT_TRUE(hasHeight(trackHeight));
  card->setEditing(false);
  EXPECT_TRUE(waitUntil([&] { return hasHeight(informationHeight); }));
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
  quit();
  EXPECT_FALSE(hasBody);
}

/// The program on an X display of the test's own.
class ProgramWindow : public testing::Test {
 protected:
  void open() {
    auto environment = display_.environment();
    environment["HOME"] = home_.path().c_str();
    program_ = std::make_unique<Program>(VIRELUNE_PROGRAM, QStringList{"--scale=1"}, environment);
    window_ = display_.window("virelune-widget");
    ASSERT_FALSE(window_.isEmpty());
  }

  /// Clicks at a point of the track panel, y upwards from the window's lower edge.
  void click(double x, double y) const {
    display_.xdotool(
        QString("mousemove --window %1 %2 %3 click 1").arg(window_).arg(x).arg(height() - y));
  }

  double height() const {
    const QString geometry = display_.xdotool("getwindowgeometry " + window_);
    return geometry.section('x', -1).toDouble();
  }

  bool waitForWitness(const char* question, const std::function<bool(const QString&)>& expected) {
    return waitUntil([&] { return expected(bus.playerctl(QString(question).split(' '))); });
  }

  const PrivateBus bus;

 private:
  const TemporaryFolder home_;
  const Display display_{bus};
  std::unique_ptr<Program> program_;
  QString window_;
};

TEST_F(ProgramWindow, ClicksCommandThePlayerAndTheCardFollowsIt) {
  const Mpv mpv(bus);
  open();
  ASSERT_TRUE(waitUntil([&] { return height() == trackHeight; }));

  click(280, 35);  // play and pause
  EXPECT_TRUE(waitForWitness("status", [](auto& status) { return status == "Paused"; }));
  click(300, 35);  // next
  EXPECT_TRUE(waitForWitness("metadata title", [](auto& title) { return title == "夜の海"; }));
  click(260, 35);  // previous
  EXPECT_TRUE(waitForWitness("metadata title", [](auto& title) { return title == "First Light"; }));
  click(240, 1);  // three quarters along the bar
  EXPECT_TRUE(waitForWitness("position", [](auto& position) {
    return std::abs(position.toDouble() - Media::trackSeconds * 0.75) < 1;
  }));
  click(280, 35);
  EXPECT_TRUE(waitForWitness("status", [](auto& status) { return status == "Playing"; }));

  bus.playerctl({"stop"});
  EXPECT_TRUE(waitUntil([&] { return height() == informationHeight; }));
  click(285, informationHeight - 12);  // the edit toggle
  EXPECT_TRUE(waitUntil([&] { return height() == trackHeight; }));
  click(285, trackHeight - 12);
  EXPECT_TRUE(waitUntil([&] { return height() == informationHeight; }));
}

}  // namespace
}  // namespace tests
