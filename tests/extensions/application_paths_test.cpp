#include "extensions/application_paths.h"

#include <fstream>

#include "extensions/login_items.h"
#include "extensions/store_search.h"
#include "platform/application/bundle.h"
#include "tests/support/temporary_data_home.h"
#include "tests/support/widget_fixture.h"

namespace virelune {
namespace {

using platform::Dictionary;
using platform::ScriptingReply;
using platform::ScriptingRequest;
using platform::Value;
using testing::ElementsAre;

class ApplicationPaths : public tests::WidgetFixture {
 protected:
  const tests::TemporaryDataHome folder;
  const std::filesystem::path support =
      folder.path() / "VRLN7K2M4Q.org.virelune.Virelune/Library/Application Support";
};

TEST_F(ApplicationPaths, AskingForThePreferencesMakesTheirFolderButNotTheFile) {
  bundle->setInfoDictionaryEntry("CFBundleShortVersionString", "2.1");
  const auto url = vl_applicationPreferencesURLForPlistGeneral();
  ASSERT_TRUE(url);
  EXPECT_EQ(url->filePath(), support / "2.1/Preferences/General.plist");
  EXPECT_TRUE(std::filesystem::is_directory(support / "2.1/Preferences"));
  EXPECT_FALSE(std::filesystem::exists(*url->filePath()));
}

TEST_F(ApplicationPaths, WithoutAVersionANameOrAPlaceNothingIsMade) {
  for (const Value& version : {Value(""), Value(2.1)}) {
    bundle->setInfoDictionaryEntry("CFBundleShortVersionString", version);
    EXPECT_FALSE(vl_applicationPreferencesURLForPlistGeneral());
  }
  bundle->setInfoDictionaryEntry("CFBundleShortVersionString", "2.1");
  EXPECT_FALSE(vl_applicationPreferencesURLForPlistWithName(""));
  EXPECT_TRUE(std::filesystem::is_empty(folder.path()));
  std::filesystem::create_directories(support.parent_path());
  std::ofstream(support) << "a file in the way";
  EXPECT_FALSE(vl_applicationPreferencesURL());
}

TEST_F(ApplicationPaths, StoreHostComesFromTheInformationDictionary) {
  bundle->setInfoDictionaryEntry("VLStoreSearchHost", "127.0.0.1:8443");
  EXPECT_EQ(storeSearchURL("term=a")->absoluteString(), "https://127.0.0.1:8443/search?term=a");
  bundle->setInfoDictionaryEntry("VLStoreSearchHost", "no host");
  EXPECT_FALSE(storeSearchURL("term=a"));
}

/// Keeps login items in memory and writes down what is asked of them.
class LoginItems final : public platform::ScriptingTransport {
 public:
  std::optional<ScriptingReply> send(const ScriptingRequest& request) override {
    using Kind = ScriptingRequest::Kind;
    if (request.bundleIdentifier != "com.apple.systemevents" || !answers) return std::nullopt;
    const auto step = request.path.front();
    EXPECT_EQ(platform::textFromCode(step.code), "logi");
    const auto at = step.index ? paths.begin() + *step.index : paths.end();
    switch (request.kind) {
      case Kind::count:
        return Value(paths.size());
      case Kind::get:
        EXPECT_EQ(platform::textFromCode(request.path.at(1).code), "ppth");
        return Value(*at);
      case Kind::make: {
        const auto* properties = request.value.get<Dictionary>();
        paths.push_back(*properties->at("path").as<std::string>());
        changes.push_back(*properties->at("hidden").as<bool>() ? "add hidden" : "add");
        return Value();
      }
      case Kind::remove:
        paths.erase(at);
        changes.push_back("remove " + std::to_string(*step.index));
        return Value();
      default:
        return std::nullopt;
    }
  }
  bool answers = true;
  std::vector<std::string> paths;
  std::vector<std::string> changes;
};

class LaunchAtLogin : public tests::WidgetFixture {
 protected:
  LaunchAtLogin() { platform_.scripting = &items; }
  LoginItems items;
};

TEST_F(LaunchAtLogin, SwitchesOnHiddenOnceAndOffAgain) {
  EXPECT_TRUE(vl_setLaunchingAtLogin(false));
  EXPECT_TRUE(vl_setLaunchingAtLogin(true));
  EXPECT_TRUE(vl_setLaunchingAtLogin(true));
  EXPECT_THAT(items.paths, ElementsAre(bundle->bundlePath()));
  EXPECT_THAT(items.changes, ElementsAre("add hidden"));
  EXPECT_TRUE(vl_setLaunchingAtLogin(false));
  EXPECT_THAT(items.changes, ElementsAre("add hidden", "remove 0"));
}

TEST_F(LaunchAtLogin, FirstItemWhosePathDiffersOnlyInCaseIsTheOneRemoved) {
  items.paths = {"", "/Apps/Other", "/apps/WIDGET", "/Apps/Widget"};
  EXPECT_TRUE(vl_hasLoginItemWithPath("/Apps/Widget"));
  EXPECT_TRUE(vl_removeLoginItemWithPath("/Apps/Widget"));
  EXPECT_THAT(items.paths, ElementsAre("", "/Apps/Other", "/Apps/Widget"));
  EXPECT_FALSE(vl_removeLoginItemWithPath("/Apps/Wid"));
  EXPECT_FALSE(vl_hasLoginItemWithPath(""));
}

TEST_F(LaunchAtLogin, WithoutAnAnswerNothingIsSwitchedButItCountsAsTried) {
  items.answers = false;
  EXPECT_FALSE(vl_addLoginItemWithPath_hidden("/Apps/Widget", false));
  EXPECT_TRUE(vl_setLaunchingAtLogin(true));
  EXPECT_FALSE(vl_isLaunchingAtLogin());
  platform_.mainBundle = nullptr;
  EXPECT_FALSE(vl_setLaunchingAtLogin(true));
}

}  // namespace
}  // namespace virelune
