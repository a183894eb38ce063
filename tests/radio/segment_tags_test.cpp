#include <gtest/gtest.h>

#include "radio/beats1_info_loader.h"
#include "tests/radio/segments.h"

using platform::Data;
using tests::frame;
using virelune::VLBeats1InfoLoader;
using namespace std::string_literals;

namespace {

std::optional<std::string> text(std::string_view identifier, const std::string& bytes) {
  return VLBeats1InfoLoader::trackInfoTextForKey_fromData(identifier, Data::fromText(bytes));
}

std::optional<std::string> title(const std::string& content) {
  return text("TIT2", "ID3" + frame("TIT2", content) + std::string(8, '\xFF'));
}

VLBeats1InfoLoader::BytesRange range(const std::string& bytes) {
  return VLBeats1InfoLoader::trackInfoBytesRangeForKey_fromData("TIT2", Data::fromText(bytes));
}

std::optional<std::string> artwork(const std::string& bytes) {
  return VLBeats1InfoLoader::trackInfoArtworkWebAddressFromData(Data::fromText(bytes));
}

}  // namespace

TEST(SegmentTags, SizesArePlainNumbersOfFourBytesAndWhatTheBytesDoNotHoldIsNotFound) {
  const auto bytes = "..TIT2\0\0\1\5\0\0"s + std::string(260, 'x');
  using Range = VLBeats1InfoLoader::BytesRange;
  EXPECT_EQ(range(bytes), (Range{12, 261}));
  EXPECT_EQ(text("TIT2", bytes), std::nullopt) << "cut short by one byte";
  EXPECT_EQ(text("TIT2", bytes + "x"), std::string(261, 'x'));
  const auto huge = "TIT2\xFF\xFF\xFF\xFF\0\0"s + "abcdefgh";
  EXPECT_EQ(range(huge).length, 0xFFFFFFFFU);
  EXPECT_EQ(text("TIT2", huge), std::nullopt);
  EXPECT_EQ(text("TIT2", frame("TPE1", frame("TIT2", "\3inner")) + frame("TIT2", "\3outer")),
            "inner")
      << "the first one counts, even inside another frame";
  EXPECT_EQ(range("TIT2\0\0\0\1\0\0\3A"s), (Range{10, 1}));
  for (const auto& held : {""s, "TIT2\0\0\0"s, "TIT2\0\0\0\1"s, "TIT2\0\0\0\1\0\0\3"s,
                           "TIT2\0\0\0\0\0\0\3ABC"s, "tit2\0\0\0\1\0\0\3ABC"s}) {
    EXPECT_EQ(range(held), Range()) << held;
  }
}

using Table = std::vector<std::pair<std::string, std::optional<std::string>>>;

TEST(SegmentTags, TextsLoseTheirEncodingByteControlCharactersAndBlankEnds) {
  const Table table = {
      {"\3\xE6\x97\xA5\0"s, "\xE6\x97\xA5"},
      {"\0Plain ASCII"s, "Plain ASCII"},
      {"\3first\0second\0\0third\0"s, "first second  third"},
      {"\3\3x", "x"},
      {"\3 \t\xC2\xA0\xE3\x80\x80x\xE2\x80\xA8\r\n", "x"},
      {"\2\0A\0B"s, "A B"},
      {"\3soft\xC2\xADhyphen\xE2\x80\x8E", "soft hyphen"},
      {"\3", {}},
      {"\3 \0 "s, {}},
      // UTF-16 with a mark, Latin-1, a lone surrogate and an overlong form are not UTF-8.
      {"\1\xFF\xFE\x41\0"s, {}},
      {"\3caf\xE9", {}},
      {"\3\xED\xA0\x80", {}},
      {"\3\xC0\x80", {}}};
  for (const auto& [content, expected] : table) EXPECT_EQ(title(content), expected) << content;
}

TEST(SegmentTags, TheArtworkAddressRunsFromHttpToJpgBehindTheWordArtwork) {
  const Table table = {{"artwork http://a/b.jpg?size=1", "http://a/b.jpg"},
                       {"xxartworkURL\0https://a/b.jpg.jpg"s, "https://a/b.jpg"},
                       {"artwork http://a/b.png http://a/c.jpg", "http://a/b.png http://a/c.jpg"},
                       {"artwork http://a/b\0\xFF.jpg"s, "http://a/b.jpg"},
                       {"artworkhttp.jpg", "http.jpg"},
                       {"http://early/a.jpg artwork", {}},
                       {"artwork http://a/\xFF.jpg", {}},
                       {"Artwork http://a/b.jpg", {}},
                       {"artwork HTTP://a/b.jpg", {}},
                       {"artwork http://a/b.JPG", {}},
                       {"artwork http://a/b.jp", {}},
                       {"", {}}};
  for (const auto& [bytes, expected] : table) EXPECT_EQ(artwork(bytes), expected) << bytes;
}
