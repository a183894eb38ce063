#include "platform/foundation/json.h"

#include <gtest/gtest.h>

#include "platform/foundation/date_formatter.h"

using namespace std::string_literals;
using platform::Dictionary;
using platform::Value;

namespace {

std::optional<Value> parse(const std::string& text) {
  return platform::jsonObjectWithData(platform::Data::fromText(text));
}

std::string nested(std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); }

}  // namespace

TEST(JSON, ReadsEveryKindOfValue) {
  const auto value = parse(R"( {"a":1,"b":{"":"\u00e9\ud83d\ude00"},"big":18446744073709551615,
                               "zero":"a\u0000b","a":0, "c":[[],{},-2,2.5,1e2,true,null]} )");
  ASSERT_TRUE(value);
  const Dictionary expected = {
      {"a", 0},
      {"b", Dictionary{{"", "\xC3\xA9\xF0\x9F\x98\x80"}}},
      {"big", 18446744073709551615.0},
      {"zero", "a\0b"s},
      {"c", platform::Array{platform::Array(), Dictionary(), -2, 2.5, 100.0, true, Value()}}};
  EXPECT_EQ(*value, Value(expected)) << "of members with one name the last one stands";
  EXPECT_EQ(parse(" \"fragment\" "), Value("fragment"));
  EXPECT_EQ(parse("-7"), Value(-7));
  EXPECT_TRUE(parse("null")->isNull());
}

TEST(JSON, RefusesWhatIsNotJSONAndWhatIsTooDeep) {
  for (const char* text :
       {"", " ", "{", "[1,]", "{\"a\"}", "{a:1}", "'a'", "[1] x", "01", "NaN", "1e999", "\"\t\"",
        "\"\xFF\"", "\"\xED\xA0\x80\"", "\"\xC0\x80\"", "\"\\ud800\"", "// note\n1", "\"open"}) {
    EXPECT_FALSE(parse(text)) << text;
  }
  EXPECT_FALSE(parse("[1]\0"s));
  EXPECT_TRUE(parse(nested(128)));
  EXPECT_FALSE(parse(nested(129)));
  EXPECT_FALSE(parse(std::string(1'000'000, '[')));
}

TEST(DateFormatter, ReadsDatesThatCarryTheirZone) {
  platform::NSDateFormatter formatter;
  formatter.setDateFormat("yyyyMMdd'T'HHmmssZZZZZ");
  const std::vector<std::pair<std::string, double>> dates = {
      {"19700101T000000Z", 0},
      {"20160229T235959Z", 1456790399},
      {"20160229T235959+01:00", 1456786799},
      {"20160229T235959-0530", 1456810199},
      {"20160229T235959+01", 1456786799},
      {"16010101T000000Z", -11644473600},
  };
  for (const auto& [text, seconds] : dates) {
    const auto date = formatter.dateFromString(text);
    EXPECT_EQ(date.value_or(platform::Date{-1}).timeIntervalSince1970, seconds) << text;
  }
  for (const std::string text :
       {"", "20160229T235959", "20150229T000000Z", "20161301T000000Z", "20160100T000000Z",
        "20160101T240000Z", "20160101T006000Z", "20160101T000060Z", "2016-01-01T000000Z",
        "20160101 000000Z", "20160101T000000Z ", "20160101T000000+1", "20160101T000000+24:00",
        "20160101T000000+01:60", "20160101T000000+01:", "+2016101T000000Z", "2016010"}) {
    EXPECT_FALSE(formatter.dateFromString(text)) << text;
  }
}
