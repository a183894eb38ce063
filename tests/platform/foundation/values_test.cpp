
#include "platform/application/bundle.h"
#include "platform/foundation/text.h"
#include "tests/support/widget_fixture.h"

namespace tests {
namespace {

using namespace platform;
using namespace std::string_literals;

std::string repeated(const std::string& text, std::size_t count) {
  std::string all;
  for (std::size_t i = 0; i < count; ++i) all += text;
  return all;
}

TEST(Texts, CompareIgnoringCaseAndCompositionByUnicodeNotByBytes) {
  const std::string above = "\u0301", below = "\u0323", ring = "\u030A";
  const std::pair<std::string, std::string> equal[] = {
      {"BEATS 1", "beats 1"},
      {"STRASSE", "straße"},
      {"\u00C9t\u00E9", "e\u0301TE\u0301"},
      {"ΣΊΣΥΦΟΣ", "σίσυφος"},
      // No character becomes more than three times longer or shorter.
      {"\u0390", "\u03B9\u0308\u0301"},
      {"k", "\u212A"},
      // Marks come in one order, but those of one class.
      {"\u1E69", "S\u0307" + below},
      {"a" + above + below, "A" + below + above},
      {"a" + below + "b" + above, "A" + below + "B" + above}};
  for (const auto& [one, other] : equal) EXPECT_TRUE(caseInsensitiveEqual(one, other)) << one;
  const std::pair<std::string, std::string> different[] = {{"Beats 1", "Beats 1 "},
                                                           {"\xFF", "\xFE"},
                                                           {"resume", "résumé"},
                                                           {"a" + above + ring, "a" + ring + above},
                                                           {"a" + below + "b", "ab" + below}};
  for (const auto& [one, other] : different) EXPECT_FALSE(caseInsensitiveEqual(one, other)) << one;
}

TEST(Texts, NeitherManyMarksNorEndlessTextsHoldAComparisonUp) {
  // Worked on mark by mark against all marks before, or read to its end each time, these would not
  // come to an end today.
  constexpr std::size_t many = 50'000;
  EXPECT_TRUE(caseInsensitiveEqual("A" + repeated("\u0301\u0323", many),
                                   "a" + repeated("\u0323", many) + repeated("\u0301", many)));
  const std::string endless(50'000'000, 'x');  // NOLINT: long on purpose
  for (int i = 0; i < 100'000; ++i) ASSERT_FALSE(caseInsensitiveEqual(endless, "Beats 1"));
}

TEST(Texts, DisplayableTextIsWholeCharactersWithoutControls) {
  EXPECT_EQ(displayableText(std::string("a\0b\x1B\nc", 6), 100), "a b \nc");
  EXPECT_EQ(displayableText("日本語", 7), "日本");
  EXPECT_EQ(displayableText("\xC3(", 100), "\xEF\xBF\xBD(");
  EXPECT_EQ(displayableText(std::string(1'000'000, 'x'), 4000).size(), 4000U);
  EXPECT_EQ(repairedUTF8("ok\xE2\x82"), "ok\xEF\xBF\xBD\xEF\xBF\xBD");
}

TEST(Texts, BeginningIsCutBetweenCharactersAsAReaderSeesThem) {
  const std::string acute = "\u0301";
  const std::string family = "👩‍👧";  // two people and what joins them, of 4, 3 and 4 bytes
  const std::string denmark = "🇩🇰";
  for (const auto& [text, bound, beginning] :
       std::vector<std::tuple<std::string, std::size_t, std::string>>{
           {"abc", 3, "abc"},
           {"abcd", 3, "abc"},
           {"abc", 0, ""},
           {"", 0, ""},
           {"日本語", 8, "日本"},
           {"abe" + acute, 5, "abe" + acute},
           {"abe" + acute, 4, "ab"},
           {"abe" + acute + acute, 6, "ab"},
           {"abe" + acute + "x", 5, "abe" + acute},
           {"a" + family, 12, "a" + family},
           {"a" + family, 11, "a"},
           {"a" + family, 8, "a"},
           {denmark + denmark, 12, denmark},
           {"a\r\nb", 2, "a"},
           {"ab\xFF\xFE"s, 3, "ab\xFF"s},
           {"a\xE2\x82"s, 2, "a\xE2"s},
           {"\xFF"s + acute + "x", 2, "\xFF"s},
           // One character that is too long by itself.
           {family + "x", 10, "👩‍"},
           {"e" + repeated(acute, 5000), 4096, "e" + repeated(acute, 2047)}}) {
    EXPECT_EQ(beginningOfText(text, bound), beginning) << text.substr(0, 20) << bound;
  }
}

TEST(Addresses, AreTakenOnlyWhenWellFormed) {
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

TEST(Texts, PartOccursAsWholeCharactersWhateverTheCaseAndComposition) {
  EXPECT_TRUE(caseInsensitiveContains("STRASSE 7", "straße"));
  EXPECT_TRUE(caseInsensitiveContains("Le Caf\u00E9", "CAFE\u0301"));
  EXPECT_FALSE(caseInsensitiveContains("cafe\u0301", "cafe"));
  EXPECT_TRUE(caseInsensitiveContains("cafe\u0301 cafe", "cafe"));
  EXPECT_TRUE(caseInsensitiveContains("\377bar", "bar"));
  EXPECT_FALSE(caseInsensitiveContains("\377bar", "BAR"));
  EXPECT_FALSE(caseInsensitiveContains("bar", ""));
}

struct Bundles : WidgetFixture {
  std::string text(std::vector<std::string> languages, const std::string& key) {
    const auto other = NSBundle::bundleWithPath(bundlePath(), std::move(languages));
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

}  // namespace
}  // namespace tests
