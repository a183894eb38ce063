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

TEST(SegmentTags, SizesArePlainNumbersOfFourBytes) {
  const auto bytes = "..TIT2\0\0\1\5\0\0"s + std::string(260, 'x');
  EXPECT_EQ(range(bytes), (VLBeats1InfoLoader::BytesRange{12, 261}));
  EXPECT_EQ(text("TIT2", bytes), std::nullopt) << "cut short by one byte";
  EXPECT_EQ(text("TIT2", bytes + "x"), std::string(261, 'x'));
  EXPECT_EQ(range("TIT2\xFF\xFF\xFF\xFF\0\0"s + "abcdefgh").length, 0xFFFFFFFFU);
  EXPECT_EQ(text("TIT2", frame("TPE1", frame("TIT2", "\3inner")) + frame("TIT2", "\3outer")),
            "inner")
      << "the first one counts, even inside another frame";
  EXPECT_EQ(text("TIT2", "TIT2\xFF\xFF\xFF\xFF\0\0"s + "abcdefgh"), std::nullopt);
}

TEST(SegmentTags, AFrameThatCannotBeHeldByTheBytesIsNotFound) {
  const VLBeats1InfoLoader::BytesRange none;
  EXPECT_EQ(range(""), none);
  EXPECT_EQ(range("TIT2\0\0\0"s), none);
  EXPECT_EQ(range("TIT2\0\0\0\1"s), none) << "the identifier must end eight bytes before the end";
  EXPECT_EQ(range("TIT2\0\0\0\1\0\0\3"s), none);
  EXPECT_EQ(range("TIT2\0\0\0\1\0\0\3A"s), (VLBeats1InfoLoader::BytesRange{10, 1}));
  EXPECT_EQ(range("TIT2\0\0\0\0\0\0\3ABC"s), none) << "a size of zero";
  EXPECT_EQ(range("tit2\0\0\0\1\0\0\3ABC"s), none);
}

using Table = std::vector<std::pair<std::string, std::optional<std::string>>>;

TEST(SegmentTags, TextsLoseTheirEncodingByteControlCharactersAndBlankEnds) {
  const Table table = {
      {"\3\xE6\x97\xA5\xE6\x9C\xAC\0"s, "\xE6\x97\xA5\xE6\x9C\xAC"},
      {"\0Plain ASCII"s, "Plain ASCII"},
      {"\3first\0second\0\0third\0"s, "first second  third"},
      {"\3\3x", "x"},  // a second mark is a control character like any other
      {"\3 \t\xC2\xA0\xE3\x80\x80x\xE2\x80\xA8\r\n", "x"},
      {"\3soft\xC2\xADhyphen\xE2\x80\x8E", "soft hyphen"},  // format characters too
      {"\2\0A\0B"s, "A B"},                                 // UTF-16 without a mark
      {"\3", {}},
      {"\3 \0 "s, {}},
      {"\1\xFF\xFE\x41\0"s, {}},  // UTF-16 with a mark is not UTF-8
      {"\3caf\xE9", {}},
      {"\3\xED\xA0\x80", {}},  // a lone surrogate
      {"\3\xC0\x80", {}},      // an overlong form
  };
  for (const auto& [content, expected] : table) EXPECT_EQ(title(content), expected) << content;
}

TEST(SegmentTags, TheArtworkAddressRunsFromHttpToJpgBehindTheWordArtwork) {
  const Table table = {
      {"artwork http://a/b.jpg?size=1", "http://a/b.jpg"},
      {"xxartworkURL\0https://a/b.jpg.jpg"s, "https://a/b.jpg"},
      {"http://early/a.jpg artwork", {}},
      {"artwork http://a/b.png http://a/c.jpg", "http://a/b.png http://a/c.jpg"},
      {"artwork http://a/b\0\xFF.jpg"s, "http://a/b.jpg"},  // cut at the zero byte
      {"artwork http://a/\xFF.jpg", {}},
      {"Artwork http://a/b.jpg", {}},
      {"artwork HTTP://a/b.jpg", {}},
      {"artwork http://a/b.JPG", {}},
      {"artwork http://a/b.jp", {}},  // cut by the end of the bytes
      {"artworkhttp.jpg", "http.jpg"},
      {"", {}},
  };
  for (const auto& [bytes, expected] : table) EXPECT_EQ(artwork(bytes), expected) << bytes;
}
