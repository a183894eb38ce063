#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/text.h"
#include "platform/url_components.h"

namespace platform {
namespace {

std::string afterAppendingItem(const std::string& address) {
  auto components = NSURLComponents::componentsWithString(address);
  if (!components) return "none";
  auto items = components->percentEncodedQueryItems().value_or(std::vector<NSURLQueryItem>());
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
      {"//h/p?a:b", "x://h/p?a:b&at=1"},
      {"mailto:a@b", "x:a@b?at=1"},
      {"https://h/a b", "none"},
      {"https://h:99999/", "none"},
      {"https://h/%zz", "none"},
      {"1nvalid://h/", "none"}};
  for (const auto& [before, after] : table) EXPECT_EQ(afterAppendingItem(before), after) << before;
}

TEST(Addresses, ComponentsAppendToFoldersWithAndWithoutATrailingSlash) {
  for (const char* folder : {"file:///a", "file:///a/"}) {
    const auto url = URLByAppendingPathComponent(*URL::fromText(folder), "b %?#ü", false);
    EXPECT_EQ(url->absoluteString(), "file:///a/b%20%25%3F%23%C3%BC");
    EXPECT_EQ(URLByAppendingPathExtension(*url, "plist")->filePath(), "/a/b %?#ü.plist");
  }
  EXPECT_EQ(URLByAppendingPathComponent(*URL::fromText("file:///a"), "b", true)->absoluteString(),
            "file:///a/b/");
}

TEST(Text, PartOccursAsWholeCharactersWhateverTheCaseAndComposition) {
  EXPECT_TRUE(caseInsensitiveContains("Bar (Deluxe Edition)", "bar"));
  EXPECT_TRUE(caseInsensitiveContains("STRASSE 7", "straße"));
  EXPECT_TRUE(caseInsensitiveContains("Le Caf\u00E9", "CAFE\u0301"));
  EXPECT_FALSE(caseInsensitiveContains("cafe\u0301", "cafe"));
  EXPECT_TRUE(caseInsensitiveContains("cafe\u0301 cafe", "cafe"));
  EXPECT_TRUE(
      caseInsensitiveContains("\xFF"
                              "bar",
                              "bar"));
  EXPECT_FALSE(
      caseInsensitiveContains("\xFF"
                              "bar",
                              "BAR"));
  EXPECT_FALSE(caseInsensitiveContains("bar", ""));
}

}  // namespace
}  // namespace platform
