#include <filesystem>
#include <fstream>
#include <limits>

#include "platform/bundle.h"
#include "platform/date.h"
#include "platform/property_list.h"
#include "platform/text.h"
#include "platform/url.h"
#include "tests/support/widget_fixture.h"

namespace tests {
namespace {

using platform::Array;
using platform::Data;
using platform::Dictionary;
using platform::Number;
using platform::Value;

TEST(Values, NumbersConvertWithinTheirRangeAndCompareByAmount) {
  EXPECT_EQ(Number(1e300).integerValue(), std::numeric_limits<std::int64_t>::max());
  EXPECT_EQ(Number(-1e300).integerValue(), std::numeric_limits<std::int64_t>::min());
  EXPECT_EQ(Number(std::nan("")).integerValue(), 0);
  EXPECT_EQ(Number(-2.9).integerValue(), -2);
  EXPECT_EQ(Value(true), Value(1));
  EXPECT_EQ(Value(2), Value(2.0));
  EXPECT_FALSE(Value(9007199254740993) == Value(9007199254740992));
  EXPECT_FALSE(Value("1") == Value(1));
  EXPECT_EQ(Value(Dictionary{{"a", Array{1, "x"}}}), Value(Dictionary{{"a", Array{1.0, "x"}}}));
  EXPECT_FALSE(Value().as<std::string>());
  EXPECT_TRUE(Value(true).as<Number>());
  EXPECT_FALSE(Value(1).as<bool>());
}

std::string durationText(double seconds, bool withHours) {
  platform::NSDateComponentsFormatter formatter;
  formatter.setZeroFormattingBehavior(platform::NSDateComponentsFormatterZeroFormattingBehaviorPad);
  formatter.setAllowedUnits((withHours ? platform::NSCalendarUnitHour : 0) |
                            platform::NSCalendarUnitMinute | platform::NSCalendarUnitSecond);
  return formatter.stringFromTimeInterval(seconds).value_or("none");
}

TEST(Durations, ArePaddedCutAndCarriedByTheLargestField) {
  EXPECT_EQ(durationText(0, false), "00:00");
  EXPECT_EQ(durationText(65, false), "01:05");
  EXPECT_EQ(durationText(59.999, false), "00:59");
  EXPECT_EQ(durationText(3600, false), "60:00");
  EXPECT_EQ(durationText(3600.5, true), "01:00:00");
  EXPECT_EQ(durationText(360000, true), "100:00:00");
  EXPECT_EQ(durationText(-65, false), "-01:05");
  EXPECT_EQ(durationText(-0.5, false), "00:00");
  EXPECT_EQ(durationText(std::numeric_limits<double>::infinity(), true), "none");
  EXPECT_EQ(durationText(1e300, true), "none");
}

TEST(Texts, CompareIgnoringCaseByUnicodeNotByBytes) {
  EXPECT_TRUE(platform::caseInsensitiveEqual("BEATS 1", "beats 1"));
  EXPECT_TRUE(platform::caseInsensitiveEqual("STRASSE", "straße"));
  EXPECT_TRUE(platform::caseInsensitiveEqual("\u00C9t\u00E9", "e\u0301TE\u0301"));
  EXPECT_TRUE(platform::caseInsensitiveEqual("ΣΊΣΥΦΟΣ", "σίσυφος"));
  EXPECT_FALSE(platform::caseInsensitiveEqual("Beats 1", "Beats 1 "));
  EXPECT_FALSE(platform::caseInsensitiveEqual("\xFF", "\xFE"));
  EXPECT_FALSE(platform::caseInsensitiveEqual("resume", "résumé"));
}

TEST(Texts, DisplayableTextIsWholeCharactersWithoutControls) {
  EXPECT_EQ(platform::displayableText(std::string("a\0b\x1B\nc", 6), 100), "a b \nc");
  EXPECT_EQ(platform::displayableText("日本語", 7), "日本");
  EXPECT_EQ(platform::displayableText("\xC3(", 100), "\xEF\xBF\xBD(");
  EXPECT_EQ(platform::displayableText(std::string(1'000'000, 'x'), 4000).size(), 4000U);
  EXPECT_EQ(platform::repairedUTF8("ok\xE2\x82"), "ok\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(Addresses, AreTakenOnlyWhenWellFormed) {
  using platform::URL;
  for (const char* good : {"http://www.virelune.org", "mailto:hello@virelune.org",
                           "http://http://a.org", "https://[::1]:80/a%20b?q=1#f", "file:///a"}) {
    EXPECT_TRUE(URL::fromText(good)) << good;
  }
  for (const char* bad :
       {"", "www.virelune.org", "mailto:a b@c", "http://a b/", "http://a/%zz", "1http://a",
        "http://a:99999/", "http://a/\xC3\xA9", "http://a/#b#c", "http://a:b:c/", "http://a/%4"}) {
    EXPECT_FALSE(URL::fromText(bad)) << bad;
  }
  EXPECT_EQ(URL::fileURLWithPath("/a b/ü?#%.jpg")->absoluteString(),
            "file:///a%20b/%C3%BC%3F%23%25.jpg");
  EXPECT_EQ(URL::fileURLWithPath("/a b/ü?#%.jpg")->filePath(), "/a b/ü?#%.jpg");
  EXPECT_FALSE(URL::fromText("file://other/a")->filePath());
  EXPECT_FALSE(URL::fromText("file:///a%00b")->filePath());
  EXPECT_EQ(URL::fromText("HTTP://user@Host:80/p?q")->host(), "Host");
}

TEST(PropertyLists, OfEitherFormAreReadAndAnythingElseIsNone) {
  const std::string head = "<?xml version=\"1.0\"?><plist version=\"1.0\">";
  const auto read = [](const std::string& text) {
    return platform::propertyListFromData(Data::fromText(text));
  };
  const auto value = read(head +
                          "<dict><key>on</key><true/><key>n</key><integer>-3</integer>"
                          "<key>list</key><array><string>é</string><real>0.5</real></array>"
                          "</dict></plist>");
  ASSERT_TRUE(value);
  EXPECT_EQ(*value, Value(Dictionary{{"on", true}, {"n", -3}, {"list", Array{"é", 0.5}}}));

  // {"a": 7}, written in the binary form by hand.
  const std::string binary(
      "bplist00\xD1\x01\x02\x51"
      "a\x10\x07\x08\x0B\x0D\0\0\0\0\0\0\x01\x01\0\0\0\0\0\0\0\x03\0\0\0\0\0\0\0\0"
      "\0\0\0\0\0\0\0\x0F",
      50);
  const auto small = read(binary);
  ASSERT_TRUE(small);
  EXPECT_EQ(*small, Value(Dictionary{{"a", 7}}));

  std::string deep = head;
  for (int i = 0; i < 200000; ++i) deep += "<array>";
  for (const std::string& bad :
       {std::string(), std::string("\0\0\0", 3), head + "<dict><key>on</key>", deep,
        std::string("bplist00"), binary.substr(0, 30), std::string("{}")}) {
    const auto none = read(bad);
    EXPECT_FALSE(none && none->as<Dictionary>() && !none->as<Dictionary>()->empty());
  }
}

class Bundles : public WidgetFixture {
 protected:
  std::string text(std::vector<std::string> languages, const std::string& key) {
    const auto other = platform::NSBundle::bundleWithPath(bundlePath(), std::move(languages));
    return other->localizedStringForKey_table(key, std::nullopt);
  }
};

TEST_F(Bundles, TextsComeInTheBestLanguageThatIsThere) {
  const std::string key = "0001.0001";
  const std::string english = text({}, key);
  EXPECT_NE(english, key);
  EXPECT_EQ(text({"xx-YY"}, key), english);
  EXPECT_NE(text({"de-AT"}, key), english);
  EXPECT_EQ(text({"de_AT"}, key), text({"de"}, key));
  EXPECT_EQ(text({"zh-CN"}, key), text({"zh-Hans-CN"}, key));
  EXPECT_NE(text({"zh-CN"}, key), english);
  EXPECT_EQ(text({"xx", "pt-BR"}, key), text({"pt"}, key));
  EXPECT_EQ(text({"de"}, "no such key"), "no such key");
}

TEST_F(Bundles, ImagesThatAreMissingAreNull) {
  EXPECT_NE(platform::imageNamed("VLImageLoveOff"), nullptr);
  EXPECT_EQ(platform::imageNamed("VLImageLoveOff"), platform::imageNamed("VLImageLoveOff"));
  EXPECT_EQ(platform::imageNamed("no such image"), nullptr);
  EXPECT_EQ(platform::imageNamed(""), nullptr);
  EXPECT_EQ(platform::NSBundle::bundleWithPath("/no/such/folder", {}), nullptr);
}

}  // namespace
}  // namespace tests
