#include "platform/foundation/text.h"

#include <gtest/gtest.h>
#include <utf8proc.h>

#include <array>

namespace platform {
namespace {

using namespace std::string_literals;

std::string repeated(const std::string& text, std::size_t count) {
  std::string all;
  for (std::size_t i = 0; i < count; ++i) all += text;
  return all;
}

TEST(Text, BeginningIsCutBetweenCharactersAsAReaderSeesThem) {
  const std::string acute = "\u0301";
  const std::string family = "👩‍👧";  // two people and what joins them, of 4, 3 and 4 bytes
  const std::string denmark = "🇩🇰";
  struct Case {
    std::string text;
    std::size_t bound;
    std::string beginning;
  };
  for (const Case& c : {Case{"abc", 3, "abc"},
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
    EXPECT_EQ(beginningOfText(c.text, c.bound), c.beginning) << c.text.substr(0, 20) << c.bound;
  }
}

TEST(Text, MarksComeInOneOrderHoweverManyThereAre) {
  const std::string above = "\u0301";
  const std::string below = "\u0323";
  const std::string ring = "\u030A";
  EXPECT_TRUE(caseInsensitiveEqual("\u1E69", "S\u0307" + below));
  EXPECT_TRUE(caseInsensitiveEqual("a" + above + below, "A" + below + above));
  EXPECT_FALSE(caseInsensitiveEqual("a" + above + ring, "a" + ring + above)) << "of one class";
  EXPECT_TRUE(caseInsensitiveEqual("a" + below + "b" + above, "A" + below + "B" + above));
  EXPECT_FALSE(caseInsensitiveEqual("a" + below + "b", "ab" + below));
  // Worked on mark by mark against all marks before, these would not come to an end today.
  constexpr std::size_t many = 50'000;
  EXPECT_TRUE(caseInsensitiveEqual("A" + repeated(above + below, many),
                                   "a" + repeated(below, many) + repeated(above, many)));
}

TEST(Text, ComparisonLeavesAloneWhatIsTooLongToBeEqual) {
  // No character becomes more than three times longer or shorter.
  for (int character = 1; character < 0x30000; ++character) {
    std::array<utf8proc_uint8_t, 4> bytes{};
    const auto length = utf8proc_encode_char(character, bytes.data());
    const std::string text(bytes.begin(), bytes.begin() + length);
    const auto folded = foldedText(text);
    if (!folded) continue;  // half of a pair
    ASSERT_LE(folded->size(), 3 * text.size()) << character;
    ASSERT_GE(3 * folded->size(), text.size()) << character;
  }
  EXPECT_TRUE(caseInsensitiveEqual("\u0390", "\u03B9\u0308\u0301"));
  EXPECT_TRUE(caseInsensitiveEqual("k", "\u212A"));
  // Read to its end each time, this would not come to an end today.
  const std::string endless(50'000'000, 'x');  // NOLINT: long on purpose
  for (int i = 0; i < 100'000; ++i) ASSERT_FALSE(caseInsensitiveEqual(endless, "Beats 1"));
}

}  // namespace
}  // namespace platform
