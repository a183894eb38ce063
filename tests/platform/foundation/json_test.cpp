#include "platform/foundation/json.h"

#include <gtest/gtest.h>

#include "platform/foundation/date_formatter.h"

using namespace std::string_literals;
using platform::Value;

namespace {

std::optional<Value> parse(const std::string& text) {
  return platform::jsonObjectWithData(platform::Data::fromText(text));
}

std::string nested(std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); }

}  // namespace

TEST(JSON, RefusesWhatIsNotJSONAndWhatIsTooDeep) {
  for (const char* text : {"", "{", "[1] x", "1e999", "\"\xED\xA0\x80\"", "\"\\ud800\""}) {
    EXPECT_FALSE(parse(text)) << text;
  }
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

TEST(DateFormatter, WritesInTheTimeZoneThatTheSystemHasNow) {
  platform::NSDateFormatter formatter;
  formatter.setDateFormat("yyyy-MM-dd HH-mm-ss");
  for (const auto& [zone, text] :
       {std::pair("UTC0", "1970-01-01 00-00-59"), std::pair("EAST-9", "1970-01-01 09-00-59"),
        std::pair("WEST+3", "1969-12-31 21-00-59")}) {
    ::setenv("TZ", zone, 1);
    EXPECT_EQ(formatter.stringFromDate({59.9}), text);
  }
  ::unsetenv("TZ");
}
