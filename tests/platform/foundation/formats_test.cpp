#include "platform/foundation/json.h"

#include <gtest/gtest.h>

#include "platform/foundation/date_formatter.h"
#include "platform/foundation/property_list.h"

using namespace platform;
using namespace std::string_literals;

namespace {

std::optional<Value> parse(const std::string& text) {
  return platform::jsonObjectWithData(platform::Data::fromText(text));
}

std::string nested(std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); }

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

std::optional<Value> read(const std::string& bytes) {
  return platform::propertyListFromData(platform::Data::fromText(bytes));
}

/// A binary list of these objects, the first one at the top.
std::string binary(const std::vector<std::string>& objects) {
  std::string bytes = "bplist00";
  std::string table;
  for (const std::string& object : objects) {
    table += static_cast<char>(bytes.size());
    bytes += object;
  }
  const auto tableOffset = static_cast<char>(bytes.size());
  return bytes + table + "\0\0\0\0\0\0\1\1"s + std::string(7, '\0') +
         static_cast<char>(objects.size()) + std::string(15, '\0') + tableOffset;
}

/// An array that refers to one long text so often that it would fill memory.
std::string sharingOneText() {
  const std::string count = "\x12\0\0\xFF\0"s;  // 65,280
  const std::string list = "\xAF"s + count + std::string(0xFF00, '\1');
  const std::string text = "\x5F"s + count + std::string(0xFF00, 'x');
  const auto number = [](std::size_t value) {
    std::string bytes(4, '\0');
    for (std::size_t i = 0; i < 4; ++i) bytes[i] = static_cast<char>(value >> (24 - 8 * i));
    return bytes;
  };
  const std::size_t textOffset = 8 + list.size(), table = textOffset + text.size();
  return "bplist00" + list + text + number(8) + number(textOffset) + "\0\0\0\0\0\0\4\1"s +
         std::string(7, '\0') + '\2' + std::string(12, '\0') + number(table);
}

const std::string head = "<?xml version=\"1.0\"?><plist version=\"1.0\">";

TEST(PropertyList, OfEitherFormIsRead) {
  EXPECT_EQ(read(head + "<dict><key>on</key><true/><key>n</key><integer>-3</integer><key>list</key>"
                        "<array><string>é&#65;</string><real>0.5</real></array></dict></plist>"),
            Value(Dictionary{{"on", true}, {"n", -3}, {"list", Array{"éA", 0.5}}}));
  EXPECT_EQ(read(binary({"\xA2\1\1", "\x51x"})), Value(Array{"x", "x"}));
  EXPECT_EQ(read(binary({"\xD1\1\2"s, "\x51k", "\x5F\x10\1v"})), Value(Dictionary{{"k", "v"}}));
}

TEST(PropertyList, RefusesWhatIsMalformedOrWhatItsLibraryCannotCopeWith) {
  std::string deep = head;
  for (int i = 0; i < 200000; ++i) deep += "<array>";
  const std::string key = "\xD1\1\2"s;
  const std::string bad[] = {
      "", "{}", "bplist00", head + "<dict><key>on</key>", deep,
      head + "<dict><key>&#x00;</key><true/></dict></plist>",
      binary({key, "\x51k", "\x51v"}).substr(0, 30), binary({key, "\x52k\0"s, "\x51v"}),
      binary({key, "\x61\0\0"s, "\x51v"}),
      // Unrolls to double its size each level, holds itself, refers to nothing, is longer than it
      // is.
      binary({"\xA2\1\1", "\xA2\2\2", "\x51x"}), binary({"\xA1\0"s}), binary({"\xA1\7"}),
      binary({"\x5F\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"}), binary({}), sharingOneText()};
  for (const std::string& bytes : bad) {
    const auto value = read(bytes);
    EXPECT_FALSE(value && !(value->as<Dictionary>() && value->as<Dictionary>()->empty())) << bytes;
  }
}

}  // namespace
