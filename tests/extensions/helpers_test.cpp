#include <fstream>

#include "extensions/files.h"
#include "extensions/notifications.h"
#include "extensions/strings.h"
#include "extensions/views.h"
#include "tests/support/temporary_folder.h"
#include "tests/support/widget_fixture.h"

namespace virelune {
namespace {

using platform::Dictionary;
using platform::NSNotification;
using platform::NSView;
using platform::URL;
using testing::ElementsAre;

class Observer : public platform::NSObject {
 public:
  bool received(const NSNotification* notification) {
    names.push_back(notification->name());
    sender = vl_objectForClass<Observer>(notification);
    text = vl_userInfoObjectForKey_withClass<std::string>(notification, "text");
    number = vl_userInfoObjectForKey_withClass<std::string>(notification, "number");
    return true;
  }
  std::vector<std::string> names;
  std::shared_ptr<Observer> sender;
  std::optional<std::string> text;
  std::optional<std::string> number;
};

class Helpers : public tests::WidgetFixture {};

TEST_F(Helpers, PostedNotificationsAllArriveOnceTheRunLoopIsIdle) {
  const auto observer = platform::make<Observer>();
  platform_.defaultCenter.addObserver(observer.get(), &Observer::received, "name");
  EXPECT_TRUE(vl_postNotificationWithName_andUserInfo(observer.get(), "name",
                                                      Dictionary{{"text", "yes"}, {"number", 1}}));
  EXPECT_TRUE(vl_postNotificationWithName(observer.get(), "name"));
  EXPECT_FALSE(vl_postNotificationWithName(observer.get(), ""));
  EXPECT_FALSE(vl_postNotificationWithName(nullptr, "name"));
  EXPECT_THAT(observer->names, ElementsAre());
  platform_.defaultCenter.postNotification(
      NSNotification("name", observer, Dictionary{{"text", "now"}, {"number", 1}}));
  EXPECT_EQ(observer->text, "now");
  EXPECT_EQ(observer->number, std::nullopt);
  EXPECT_EQ(observer->sender, observer);
  clock.settle();
  EXPECT_THAT(observer->names, ElementsAre("name", "name", "name"));
  EXPECT_EQ(observer->text, std::nullopt);
  observer->sender = nullptr;
}

TEST_F(Helpers, KeyWithoutTranslationShowsItselfAndAnEmptyOneNothing) {
  EXPECT_EQ(vl_localizedString("9999.0001"), "9999.0001");
  EXPECT_EQ(vl_localizedString_fromTable("key", "NoSuchTable"), "key");
  EXPECT_EQ(vl_localizedString(""), std::nullopt);
  platform_.mainBundle = nullptr;
  EXPECT_EQ(vl_localizedString("9999.0001"), std::nullopt);
  EXPECT_EQ(vl_localizedString_fromTable_inBundle("key", std::nullopt, bundle.get()), "key");
}

TEST_F(Helpers, HiddenFilesAreLeftOutAndAMissingFolderIsNoEmptyOne) {
  const tests::TemporaryFolder folder;
  const auto url = URL::fileURLWithPath(folder.path().string());
  std::ofstream(folder.path() / ".hidden") << "x";
  EXPECT_FALSE(vl_hasVisibleContentsOfDirectoryAtURL(url));
  EXPECT_TRUE(vl_visibleContentsOfDirectoryAtURL(url));
  std::ofstream(folder.path() / "a b%") << "x";
  std::filesystem::create_directories(folder.path() / "sub/entered");
  const auto contents = vl_visibleContentsOfDirectoryAtURL(url);
  ASSERT_TRUE(contents);
  const std::string base = url->absoluteString();
  EXPECT_THAT(*contents,
              ElementsAre(*URL::fromText(base + "/a%20b%25"), *URL::fromText(base + "/sub/")));
  EXPECT_TRUE(vl_hasVisibleContentsOfDirectoryAtURL(url));
  const auto missing = URL::fileURLWithPath((folder.path() / "missing").string());
  EXPECT_FALSE(vl_visibleContentsOfDirectoryAtURL(missing));
  EXPECT_FALSE(vl_hasVisibleContentsOfDirectoryAtURL(missing));
  EXPECT_FALSE(vl_visibleContentsOfDirectoryAtURL(std::nullopt));
}

TEST_F(Helpers, RemovingSubviewsLeavesNoneAndTellsWhetherThereWereAny) {
  const auto parent = platform::make<NSView>(platform::NSMakeRect(0, 0, 10, 10));
  EXPECT_FALSE(vl_removeSubviews(parent));
  EXPECT_FALSE(vl_removeSubviews(nullptr));
  for (int i = 0; i < 3; ++i) parent->addSubview(platform::make<NSView>());
  EXPECT_TRUE(vl_removeSubviews(parent));
  EXPECT_TRUE(parent->subviews().empty());
}

}  // namespace
}  // namespace virelune
