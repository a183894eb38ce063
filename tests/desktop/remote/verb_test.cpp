#include "desktop/remote/verb.h"

#include <gmock/gmock.h>

#include "desktop/remote/template.h"

namespace {

using Arguments = std::vector<const char*>;

TEST(Verbs, AreReadWithTheirValuesAndOptionsInAnyOrder) {
  const auto parsed = [](const Arguments& arguments) { return **desktop::parseVerb(arguments); };
  EXPECT_EQ(parsed({"seek", "-5"}).value, "-5");
  EXPECT_EQ(parsed({"rate", "--album", "-"}).value, "-");
  EXPECT_TRUE(parsed({"rate", "-", "--album"}).album);
  EXPECT_EQ(parsed({"--player", "status", "love", "on"}).player, "status");
  EXPECT_EQ(parsed({"--player=a b", "next"}).player, "a b");
  EXPECT_EQ(parsed({"status", "--format={{title}}=", "--follow"}).format, "{{title}}=");
  for (const Arguments& other :
       {Arguments{}, {"--demo"}, {"song.mp3"}, {"--on-top", "next"}, {"--player"}}) {
    EXPECT_FALSE(desktop::parseVerb(other)) << "a command line without a verb";
  }
}

TEST(Verbs, SayWhatMakesNoSense) {
  for (const auto& [arguments, message] : std::vector<std::pair<Arguments, const char*>>{
           {{"next", "5"}, "next does not take \"5\""},
           {{"rate", "4", "5"}, "rate does not take \"5\""},
           {{"seek"}, "seek needs S|+S|-S|P%"},
           {{"love", ""}, "love needs a value that is not empty"},
           {{"next", "--album"}, "next has no option \"--album\""},
           {{"status", "--format"}, "--format needs a value"},
           {{"status", "--format="}, "--format needs a value"},
           {{"rate", "--album=yes"}, "--album takes no value"},
           {{"status", "--position"}, "--position goes with --follow"}}) {
    const auto verb = desktop::parseVerb(arguments);
    ASSERT_TRUE(verb && !*verb) << message;
    EXPECT_EQ(verb->problem().text, message);
  }
}

const QVariantMap status{{"player", "mpv"},    {"state", "playing"}, {"title", "A & \"B\""},
                         {"position", 3723.9}, {"length", 7200.0},   {"rating", 3.5},
                         {"loved", true}};

TEST(Templates, AreFilledAsPlayerctlFillsThem) {
  for (const auto& [text, expected] : std::vector<std::pair<const char*, const char*>>{
           {"", ""},
           {"{{ title }}|{{xesam:title}}|{{artist}}|{{nonsense}}", "A & \"B\"|A & \"B\"||"},
           {"{{duration(position)}}/{{ duration( mpris:length ) }}", "1:02:03/2:00:00"},
           {"{{position}} {{duration(artist)}}", "3723900000 "},
           {"{{status}} {{lc(status)}} {{uc(playerName)}} {{emoji(status)}}",
            "Playing playing MPV ▶️"},
           {"{{default(artist, \"x, {y\")}}", "x, {y"},
           {"{{default(title, 'x')}} {{trunc(title, 3)}} {{stars}}", "A & \"B\" A &… ★★★½"},
           {"{{markup_escape(title)}} }} {", "A &amp; &quot;B&quot; }} {"}}) {
    const auto filled = desktop::filledTemplate(text, status);
    ASSERT_TRUE(filled) << text;
    EXPECT_EQ(filled->toStdString(), expected);
  }
  for (const char* wrong :
       {"{{title", "{{title}} {{", "{{foo(title)}}", "{{lc(title}}", "{{lc()}}{{trunc(title)}}"}) {
    EXPECT_FALSE(desktop::filledTemplate(wrong, status)) << wrong;
  }
}

TEST(Templates, WaybarGetsMarkupAClassAndAPartOfTheWhole) {
  EXPECT_EQ(desktop::waybarLine(status).toStdString(),
            R"({"alt":"playing","class":["playing","loved"],"percentage":51,)"
            R"("text":"A &amp; &quot;B&quot;","tooltip":"A &amp; &quot;B&quot;\n★★★½"})");
  EXPECT_EQ(desktop::waybarLine({}).toStdString(),
            R"({"alt":"none","class":["none"],"percentage":0,"text":"","tooltip":""})");
}

}  // namespace
