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
  EXPECT_EQ(VLBeats1InfoLoader::trackInfoBytesRangeForKey_fromData(
                "", Data::fromText(frame("TIT2", "abcdefgh"))),
            none);
}

TEST(SegmentTags, TheFirstOccurrenceCountsEvenInsideAnotherFrame) {
  EXPECT_EQ(text("TIT2", frame("TPE1", frame("TIT2", "\3inner")) + frame("TIT2", "\3outer")),
            "inner");
}

TEST(SegmentTags, TextsLoseTheirEncodingByteControlCharactersAndBlankEnds) {
  EXPECT_EQ(title("\3\xE6\x97\xA5\xE6\x9C\xAC\0"s), "\xE6\x97\xA5\xE6\x9C\xAC");
  EXPECT_EQ(title("\0Plain ASCII"s), "Plain ASCII");
  EXPECT_EQ(title("\3first\0second\0\0third\0"s), "first second  third");
  EXPECT_EQ(title("\3\3x"), "x") << "a second mark is a control character like any other";
  EXPECT_EQ(title("\3 \t\xC2\xA0\xE3\x80\x80x\xE2\x80\xA8\r\n"), "x");
  EXPECT_EQ(title("\3soft\xC2\xADhyphen\xE2\x80\x8E"), "soft hyphen") << "format characters too";
  EXPECT_EQ(title("\2\0A\0B"s), "A B") << "UTF-16 without a mark comes out spread";
  EXPECT_EQ(title("\3"), std::nullopt);
  EXPECT_EQ(title("\3 \0 "s), std::nullopt);
  EXPECT_EQ(title("\1\xFF\xFE\x41\0"s), std::nullopt) << "UTF-16 with a mark is not UTF-8";
  EXPECT_EQ(title("\3caf\xE9"), std::nullopt);
  EXPECT_EQ(title("\3\xED\xA0\x80"), std::nullopt) << "a lone surrogate";
  EXPECT_EQ(title("\3\xC0\x80"), std::nullopt) << "an overlong form";
}

TEST(SegmentTags, TheArtworkAddressRunsFromHttpToJpgBehindTheWordArtwork) {
  EXPECT_EQ(artwork("artwork http://a/b.jpg?size=1"), "http://a/b.jpg");
  EXPECT_EQ(artwork("xxartworkURL\0https://a/b.jpg.jpg"s), "https://a/b.jpg");
  EXPECT_EQ(artwork("http://early/a.jpg artwork"), std::nullopt);
  EXPECT_EQ(artwork("artwork http://a/b.png http://a/c.jpg"), "http://a/b.png http://a/c.jpg");
  EXPECT_EQ(artwork("artwork http://a/b\0c/d.jpg"s), "http://a/b.jpg") << "cut at the zero byte";
  EXPECT_EQ(artwork("artwork http://a/b\0\xFF.jpg"s), "http://a/b.jpg");
  EXPECT_EQ(artwork("artwork http://a/\xFF.jpg"), std::nullopt);
  EXPECT_EQ(artwork("Artwork http://a/b.jpg"), std::nullopt);
  EXPECT_EQ(artwork("artwork HTTP://a/b.jpg"), std::nullopt);
  EXPECT_EQ(artwork("artwork http://a/b.JPG"), std::nullopt);
  EXPECT_EQ(artwork("artwork http://a/b.jp"), std::nullopt) << "cut by the end of the bytes";
  EXPECT_EQ(artwork("artworkhttp.jpg"), "http.jpg");
  EXPECT_EQ(artwork("artworkhttp"), std::nullopt);
  EXPECT_EQ(artwork(""), std::nullopt);
}
