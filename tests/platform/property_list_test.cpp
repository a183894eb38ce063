#include "platform/property_list.h"

#include <gtest/gtest.h>

using namespace std::string_literals;
using platform::Value;

namespace {

/// The value of a binary list of these objects, the first one at the top.
std::optional<Value> parse(const std::vector<std::string>& objects) {
  std::string bytes = "bplist00";
  std::string table;
  for (const std::string& object : objects) {
    table += static_cast<char>(bytes.size());
    bytes += object;
  }
  const auto tableOffset = static_cast<char>(bytes.size());
  bytes += table + "\0\0\0\0\0\0\1\1"s + std::string(7, '\0') + static_cast<char>(objects.size()) +
           std::string(15, '\0') + tableOffset;
  return platform::propertyListFromData(platform::Data::fromText(bytes));
}

std::optional<Value> parseXML(const std::string& body) {
  return platform::propertyListFromData(
      platform::Data::fromText("<plist version=\"1.0\">" + body + "</plist>"));
}

}  // namespace

TEST(PropertyList, RefusesWhatItsLibraryCannotCopeWith) {
  EXPECT_EQ(parse({"\xA2\1\1", "\x51x"}), Value(platform::Array{"x", "x"}));
  EXPECT_EQ(parse({"\xD1\1\2"s, "\x51k", "\x5F\x10\1v"}), Value(platform::Dictionary{{"k", "v"}}));
  EXPECT_FALSE(parse({"\xD1\1\2"s, "\x52k\0"s, "\x51v"})) << "a zero character in a key";
  EXPECT_FALSE(parse({"\xD1\1\2"s, "\x61\0\0"s, "\x51v"}));
  EXPECT_FALSE(parse({"\xA2\1\1", "\xA2\2\2", "\x51x"})) << "unrolls to double its size each level";
  EXPECT_FALSE(parse({"\xA1\0"s})) << "holds itself";
  EXPECT_FALSE(parse({"\xA1\7"}));
  EXPECT_FALSE(parse({"\x5F\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"}));
  EXPECT_FALSE(parse({}));
  EXPECT_EQ(parseXML("<dict><key>k</key><string>&#65;</string></dict>"),
            Value(platform::Dictionary{{"k", "A"}}));
  EXPECT_FALSE(parseXML("<dict><key>&#x00;</key><true/></dict>"));
}
