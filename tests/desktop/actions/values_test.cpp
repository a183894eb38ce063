#include "desktop/actions/values.h"

#include <gtest/gtest.h>

namespace {

TEST(ActionValues, ReadStarsAsPeopleWriteThemAndNothingElse) {
  using Number = std::int64_t;
  for (const auto& [text, now, expected] :
       std::vector<std::tuple<const char*, Number, std::optional<Number>>>{
           {"0", 50, 0},   {"5", 0, 100},   {"4.5", 0, 90},
           {"4,5", 0, 90}, {"4½", 0, 90},   {"½", 0, 10},
           {"+", 95, 100}, {"+", 100, 100}, {"+", 34, 40},
           {"-", 34, 30},  {"-", 40, 30},   {"-", 0, 0},
           {"5.5", 0, {}}, {"4.3", 0, {}},  {"-1", 0, {}},
           {"+1", 0, {}},  {"", 0, {}},     {"4.5x", 0, {}},
           {"1e0", 0, {}}, {"nan", 0, {}},  {"99999999999999999999", 0, {}}}) {
    EXPECT_EQ(desktop::ratingFromText(text, now), expected) << text << " from " << now;
  }
  for (const auto& [rating, text] : std::vector<std::pair<std::int64_t, const char*>>{
           {0, "0"}, {90, "4.5"}, {34, "1.5"}, {100, "5"}, {-3, "0"}, {400, "5"}}) {
    EXPECT_EQ(desktop::textFromRating(rating), text);
  }
}

TEST(ActionValues, ReadPlacesOnAScaleFromItsBeginningFromNowAndInParts) {
  using Amount = std::optional<double>;
  const std::tuple<const char*, double, Amount> amounts[] = {
      {"30", 200, 30},   {"+5", 200, 45},   {"-5.5", 200, 34.5}, {"-50", 200, 0},
      {"50%", 200, 100}, {"+10%", 200, 60}, {"-10%", 200, 20},   {"300", 200, 300},
      {"50%", 0, {}},    {"%", 200, {}},    {"--5", 200, {}},    {"5 ", 200, {}},
      {"", 200, {}},     {"inf", 200, {}},  {"+", 200, {}}};
  for (const auto& [text, whole, expected] : amounts) {
    EXPECT_EQ(desktop::amountFromText(text, 40, whole), expected) << text;
  }
  EXPECT_EQ(desktop::switchFromText("", true), false);
  EXPECT_EQ(desktop::switchFromText("toggle", false), true);
  EXPECT_EQ(desktop::switchFromText("off", true), false);
  EXPECT_EQ(desktop::switchFromText("yes", true), std::nullopt);
}

}  // namespace
