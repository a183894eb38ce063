#include "extensions/collections.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "platform/button.h"

namespace virelune {
namespace {

using platform::Array;
using platform::Dictionary;
using platform::Number;
using platform::Value;

TEST(Collections, ElementsOutsideTheArrayAndOfOtherClassesAreNone) {
  const Array array{"first", 2, "last"};
  EXPECT_FALSE(vl_objectAtIndex(array, -1));
  EXPECT_FALSE(vl_objectAtIndex(array, 3));
  EXPECT_FALSE(vl_objectAtIndex(array, std::int64_t{1} << 32));
  EXPECT_EQ(vl_objectAtIndex_withClass<std::string>(array, 2), "last");
  EXPECT_FALSE(vl_objectAtIndex_withClass<std::string>(array, 1));
  EXPECT_FALSE(vl_objectAtIndex(Array{}, 0));
  EXPECT_FALSE(vl_objectAtIndex(std::optional<Array>(), 0));
  EXPECT_EQ(vl_firstObjectWithClass<Number>(array)->integerValue(), 2);
  EXPECT_FALSE(vl_firstObjectWithClass<Dictionary>(array));
}

TEST(Collections, ObjectsOfDerivedClassesBelongToTheClass) {
  const auto view = platform::make<platform::NSView>();
  const auto button = platform::make<platform::NSButton>();
  const platform::ObjectArray objects{nullptr, view, button};
  EXPECT_EQ(vl_firstObjectWithClass<platform::NSView>(objects), view);
  EXPECT_EQ(vl_firstObjectWithClass<platform::NSButton>(objects), button);
  EXPECT_EQ(vl_objectAtIndex_withClass<platform::NSButton>(objects, 1), nullptr);
  EXPECT_EQ(vl_objectAtIndex_withClass<platform::NSView>(objects, 2), button);
}

TEST(Collections, ValuesOfOtherClassesUnderAnEmptyKeyOrOfNoDictionaryAreNone) {
  const Dictionary dictionary{{"number", 1}, {"yes", true}, {"", "nameless"}};
  EXPECT_FALSE(vl_objectForKey_withClass<std::string>(dictionary, "number"));
  EXPECT_FALSE(vl_objectForKey_withClass<std::string>(dictionary, ""));
  EXPECT_FALSE(vl_hasObjectForKey(dictionary, ""));
  EXPECT_TRUE(vl_objectForKey_withClass<Number>(dictionary, "yes")->boolValue());
  EXPECT_TRUE(vl_hasObjectForKey(dictionary, "number"));
  EXPECT_FALSE(vl_hasObjectForKey(std::optional<Dictionary>(), "number"));
  const Dictionary* missing = nullptr;
  EXPECT_FALSE(vl_objectForKey_withClass<Number>(missing, "number"));
}

TEST(Collections, SettingTellsWhetherTheDictionaryChanged) {
  Dictionary dictionary;
  EXPECT_FALSE(vl_setObject_forKey(dictionary, "value", ""));
  EXPECT_FALSE(vl_setObject_forKey(dictionary, "", "key"));
  EXPECT_TRUE(vl_setObject_forKey(dictionary, "value", "key"));
  EXPECT_FALSE(vl_setObject_forKey(dictionary, "value", "key"));
  EXPECT_TRUE(vl_setObject_forKey(dictionary, 1, "key"));
  EXPECT_TRUE(vl_setObject_forKey(dictionary, "", "key"));
  EXPECT_FALSE(vl_setObject_forKey(dictionary, "", "key"));
  EXPECT_FALSE(vl_setObject_forKey(dictionary, std::optional<std::string>(), "key"));
  EXPECT_TRUE(dictionary.empty());
}

}  // namespace
}  // namespace virelune
