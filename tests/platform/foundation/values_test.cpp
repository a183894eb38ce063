
#include "platform/application/bundle.h"
#include "platform/foundation/text.h"
#include "platform/foundation/url_components.h"
#include "tests/support/widget_fixture.h"

namespace tests {
namespace {

using platform::URL;
using namespace std::string_literals;

std::string repeated(const std::string& text, std::size_t count) {
  std::string all;
  for (std::size_t i = 0; i < count; ++i) all += text;
  return all;
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
    EXPECT_EQ(platform::beginningOfText(text, bound), beginning) << text.substr(0, 20) << bound;
  }
}

TEST(Texts, MarksComeInOneOrderHoweverManyThereAre) {
  const std::string above = "\u0301";
  const std::string below = "\u0323";
  const std::string ring = "\u030A";
  EXPECT_TRUE(platform::caseInsensitiveEqual("\u1E69", "S\u0307" + below));
  EXPECT_TRUE(platform::caseInsensitiveEqual("a" + above + below, "A" + below + above));
  EXPECT_FALSE(platform::caseInsensitiveEqual("a" + above + ring, "a" + ring + above))
      << "of one class";
  EXPECT_TRUE(platform::caseInsensitiveEqual("a" + below + "b" + above, "A" + below + "B" + above));
  EXPECT_FALSE(platform::caseInsensitiveEqual("a" + below + "b", "ab" + below));
  // Worked on mark by mark against all marks before, these would not come to an end today.
  constexpr std::size_t many = 50'000;
  EXPECT_TRUE(platform::caseInsensitiveEqual("A" + repeated(above + below, many),
                                             "a" + repeated(below, many) + repeated(above, many)));
}

TEST(Texts, ComparisonLeavesAloneWhatIsTooLongToBeEqual) {
  // No character becomes more than three times longer or shorter.
  EXPECT_TRUE(platform::caseInsensitiveEqual("\u0390", "\u03B9\u0308\u0301"));
  EXPECT_TRUE(platform::caseInsensitiveEqual("k", "\u212A"));
  // Read to its end each time, this would not come to an end today.
  const std::string endless(50'000'000, 'x');  // NOLINT: long on purpose
  for (int i = 0; i < 100'000; ++i)
    ASSERT_FALSE(platform::caseInsensitiveEqual(endless, "Beats 1"));
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

std::string afterAppendingItem(const std::string& address) {
  auto components = platform::NSURLComponents::componentsWithString(address);
  if (!components) return "none";
  auto items =
      components->percentEncodedQueryItems().value_or(std::vector<platform::NSURLQueryItem>());
  items.push_back({"at", "1"});
  components->setPercentEncodedQueryItems(items);
  components->setScheme("x");
  const auto url = components->url();
  return url ? url->absoluteString() : "no address";
}

TEST(URLComponents, QueryItemsAreKeptAsTheyWereWritten) {
  const std::pair<const char*, const char*> table[] = {
      {"https://h/p", "x://h/p?at=1"},
      {"https://h/p?", "x://h/p?at=1"},
      {"https://h/p?a=%2B&&b&c==&d=%26#f?g", "x://h/p?a=%2B&&b&c==&d=%26&at=1#f?g"},
      {"https://h/p?a&", "x://h/p?a&&at=1"},
      {"//h/p?a:b", "x://h/p?a:b&at=1"},
      {"://h/p", "none"},
      {"mailto:a@b", "x:a@b?at=1"},
      {"https://h/a b", "none"},
      {"https://h:99999/", "none"},
      {"https://h/%zz", "none"},
      {"1nvalid://h/", "none"}};
  for (const auto& [before, after] : table) EXPECT_EQ(afterAppendingItem(before), after) << before;
}

TEST(Texts, PartOccursAsWholeCharactersWhateverTheCaseAndComposition) {
  EXPECT_TRUE(platform::caseInsensitiveContains("STRASSE 7", "straße"));
  EXPECT_TRUE(platform::caseInsensitiveContains("Le Caf\u00E9", "CAFE\u0301"));
  EXPECT_FALSE(platform::caseInsensitiveContains("cafe\u0301", "cafe"));
  EXPECT_TRUE(platform::caseInsensitiveContains("cafe\u0301 cafe", "cafe"));
  EXPECT_TRUE(platform::caseInsensitiveContains("\377bar", "bar"));
  EXPECT_FALSE(platform::caseInsensitiveContains("\377bar", "BAR"));
  EXPECT_FALSE(platform::caseInsensitiveContains("bar", ""));
}

struct Bundles : WidgetFixture {
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

}  // namespace
}  // namespace tests
