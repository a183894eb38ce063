
#include "extensions/application_paths.h"
#include "extensions/notifications.h"
#include "extensions/store_search.h"
#include "extensions/strings.h"
#include "extensions/views.h"
#include "platform/view/button.h"
#include "tests/support/listener.h"
#include "tests/support/temporary_data_home.h"
#include "tests/support/widget_fixture.h"

namespace virelune {
namespace {

using platform::Dictionary;
using platform::Value;

using Helpers = tests::WidgetFixture;

TEST_F(Helpers, AskingForThePreferencesMakesTheirFolderButNotTheFile) {
  const tests::TemporaryDataHome folder;
  const auto support =
      folder.path() / "VRLN7K2M4Q.org.virelune.Virelune/Library/Application Support";
  const char* key = "CFBundleShortVersionString";
  for (const Value& version : {Value(""), Value(2.1)}) {
    bundle->setInfoDictionaryEntry(key, version);
    EXPECT_FALSE(vl_applicationPreferencesURLForPlistGeneral());
  }
  bundle->setInfoDictionaryEntry(key, "2.1");
  EXPECT_FALSE(vl_applicationPreferencesURLForPlistWithName(""));
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
  const auto url = vl_applicationPreferencesURLForPlistGeneral();
  ASSERT_TRUE(url);
  EXPECT_EQ(url->filePath(), support / "2.1/Preferences/General.plist");
  EXPECT_TRUE(std::filesystem::is_empty(support / "2.1/Preferences"));
  std::filesystem::remove_all(support);
  std::ofstream(support) << "a file in the way";
  EXPECT_FALSE(vl_applicationPreferencesURL());
}

TEST_F(Helpers, StoreHostComesFromTheInformationDictionary) {
  bundle->setInfoDictionaryEntry("VLStoreSearchHost", "127.0.0.1:8443");
  EXPECT_EQ(storeSearchURL("term=a")->absoluteString(), "https://127.0.0.1:8443/search?term=a");
  bundle->setInfoDictionaryEntry("VLStoreSearchHost", "");
  EXPECT_EQ(storeSearchURL("a")->absoluteString(), "https://itunes.apple.com/search?a");
  bundle->setInfoDictionaryEntry("VLStoreSearchHost", "no host");
  EXPECT_FALSE(storeSearchURL("term=a"));
}

TEST(Collections, SettingTellsWhetherTheDictionaryChanged) {
  Dictionary dictionary;
  const std::tuple<const char*, const char*, bool, const char*> steps[] = {
      {"", "key", false, nullptr},     {"value", "", false, nullptr},
      {"value", "key", true, "value"}, {"value", "key", false, "value"},
      {"other", "key", true, "other"}, {"", "key", true, nullptr}};
  for (const auto& [value, key, changes, stored] : steps) {
    EXPECT_EQ(vl_setObject_forKey(dictionary, value, key), changes) << value << key;
    EXPECT_EQ(dictionary, stored ? Dictionary({{"key", stored}}) : Dictionary());
  }
}

TEST_F(Helpers, EqualNotificationsPostedInARowAreAllDeliveredOnceTheLoopIsIdle) {
  const auto listener = platform::make<tests::Listener>();
  platform_.defaultCenter->addObserver(listener.get(), &tests::Listener::heard, "name");
  EXPECT_FALSE(vl_postNotificationWithName(listener.get(), ""));
  for (int i = 0; i < 2; ++i) EXPECT_TRUE(vl_postNotificationWithName(listener.get(), "name"));
  EXPECT_EQ(listener->count, 0);
  clock.settle();
  EXPECT_EQ(listener->count, 2);
}

}  // namespace
}  // namespace virelune
