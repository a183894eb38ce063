#include <gtest/gtest.h>

#include <sys/stat.h>

#include <fstream>
#include <future>
#include <regex>

#include "desktop/files/settings.h"
#include "desktop/program/command_line.h"
#include "desktop/program/worker_pool.h"
#include "desktop/remote/verb.h"
#include "desktop/window/placement.h"
#include "tests/support/temporary_folder.h"

namespace {

auto parsed(const std::vector<const char*>& arguments) {
  return desktop::parseCommandLine(arguments);
}

TEST(CommandLine, NamesWhatItDoesNotUnderstand) {
  for (const auto& [arguments, message] :
       std::vector<std::pair<std::vector<const char*>, const char*>>{
           {{"--frobnicate"}, "unknown option \"--frobnicate\""},
           {{"song.mp3"}, "unexpected \"song.mp3\""},
           {{"--player"}, "--player needs a value"},
           {{"--tour=", "x"}, "--tour needs a value"},
           {{"--tour", ""}, "--tour needs a value"},
           {{"--stream-host=a:99999"}, "--stream-host takes a host or host:port, not \"a:99999\""},
           {{"--store-host", ":80"}, "--store-host takes a host or host:port, not \":80\""},
           {{"--store-host", "me@a"}, "--store-host takes a host or host:port, not \"me@a\""},
           {{"--demo=yes"}, "--demo takes no value"},
           {{"--scale", "0.5"}, "--scale takes a number from 1 to 4, not \"0.5\""},
           {{"--scale", "2x"}, "--scale takes a number from 1 to 4, not \"2x\""},
           {{"--scale", "nan"}, "--scale takes a number from 1 to 4, not \"nan\""},
           {{"--wait-for-player", "--demo"}, "--wait-for-player and --demo exclude each other"},
           {{"--restore-ratings", "a", "--list-backups"}, "--restore-ratings goes alone"},
           {{"--player", "a", "--demo"}, "--player and --demo exclude each other"}}) {
    const auto result = parsed(arguments);
    ASSERT_FALSE(result) << message;
    EXPECT_EQ(result.problem().text, message);
  }
}

/// What a pattern finds in a text, option by option: true with a value, which is told by a second
/// group that is not empty.
std::map<std::string, bool> optionsIn(const std::string& text, const char* pattern) {
  const std::regex expression(pattern, std::regex::multiline);
  std::map<std::string, bool> options;
  for (std::sregex_iterator found(text.begin(), text.end(), expression), end; found != end;
       ++found) {
    options[(*found)[1]] = (*found)[2].length() > 0;
  }
  return options;
}

TEST(CommandLine, TheManualAndTheCompletionsKnowEveryVerbAndEveryOptionAndNoOther) {
  const auto help = optionsIn(desktop::helpText(), "^  --([a-z-]+)( [A-Z])?");
  ASSERT_GT(help.size(), 10u);
  const auto textOf = [](const char* file) {
    return tests::contents(std::filesystem::path(VIRELUNE_PACKAGING) / file);
  };
  const auto verbs = optionsIn(desktop::verbsHelp(), "^  ([a-z-]+)()");
  ASSERT_GT(verbs.size(), 15u);
  for (const auto& [verb, takesValue] : verbs) {
    for (const auto& [file, before, after] :
         {std::tuple("virelune-widget.1", "\\.It Cm ", "\\b"),
          {"completions/virelune-widget.bash", "verbs=\"[^\"]*\\b", "\\b"},
          {"completions/virelune-widget.fish", "__fish_use_subcommand -a ", " "},
          {"completions/_virelune-widget", "    '", ":"}}) {
      const std::regex pattern(before + verb + after);
      EXPECT_TRUE(std::regex_search(textOf(file), pattern)) << file << ' ' << verb;
    }
  }
  EXPECT_EQ(optionsIn(textOf("virelune-widget.1"), R"(^\.It Fl \\-([a-z-]+)( Ar)?)"), help);
  EXPECT_EQ(optionsIn(textOf("completions/_virelune-widget"), R"(^  '--([a-z-]+)(=)?\[)"), help);
  EXPECT_EQ(optionsIn(textOf("completions/virelune-widget.fish"), R"( -l ([a-z-]+)( -[rx])?)"),
            help);
  // This one has a list of all, and labels of its branches for those with a value.
  const std::string bash = textOf("completions/virelune-widget.bash");
  auto completed = optionsIn(bash.substr(0, bash.find("COMPREPLY=()")), R"([ "]--([a-z-]+)(=)?)");
  for (const auto& label : optionsIn(bash, R"((?:^    |\| )--([a-z-]+)(?= \||\)))")) {
    completed[label.first] = true;
  }
  EXPECT_EQ(completed, help);
}

TEST(WindowPlacement, KeepsTheWholeCardOnTheNearestScreen) {
  const QList<QRect> screens{QRect(0, 30, 1920, 1050), QRect(1920, 0, 1280, 1024)};
  const QSize card(320, 88);
  const std::pair<QPoint, QPoint> places[] = {{{100, 200}, {100, 200}},
                                              {{-50, 0}, {0, 30}},
                                              {{3100, 500}, {2880, 500}},
                                              {{1800, 1060}, {1920, 936}},
                                              {{-9000, -9000}, {0, 30}}};
  for (const auto& [wanted, expected] : places) {
    EXPECT_EQ(desktop::positionOnScreens(wanted, card, screens), expected);
  }
  EXPECT_EQ(desktop::positionOnScreens({7, 8}, card, {}), QPoint(7, 8));
  const QList<QRect> tiny{QRect(10, 10, 200, 50)};
  EXPECT_EQ(desktop::positionOnScreens({500, 500}, card, tiny), QPoint(10, 10));
}

TEST(Settings, AreKeptAndWhatMakesNoSenseIsNone) {
  const tests::TemporaryFolder folder;
  const auto file = folder.path() / "new" / "settings.ini";
  {
    desktop::Settings settings(file);
    EXPECT_EQ(settings.position("one"), std::nullopt);
    settings.setPosition("A 1920x1080+0+0", {-12, 345});
    settings.setPosition("A/B=%1", {1, 2});
    settings.setPlayer("mpv");
    settings.setOnTop(true);
  }
  desktop::Settings settings(file);
  EXPECT_EQ(settings.position("A 1920x1080+0+0"), QPoint(-12, 345));
  EXPECT_EQ(settings.position("A/B=%1"), QPoint(1, 2));
  EXPECT_EQ(settings.position("other screens"), QPoint(1, 2)) << "where it was last";
  EXPECT_EQ(settings.player(), "mpv");
  EXPECT_TRUE(settings.isOnTop());
  EXPECT_EQ(settings.scale(), std::nullopt);
  for (const char* rubbish : {"", "Last=12", "Last=1 2 3", "Last=a b", "Last=99999999999 1",
                              "Last=2147483647 0", "Last=@Point(1 2)"}) {
    std::ofstream(file) << "[Card]\nScale=9\nOnTop=perhaps\n[Place]\n" << rubbish << '\n';
    const desktop::Settings read(file);
    EXPECT_EQ(read.position("any"), std::nullopt) << rubbish;
    EXPECT_FALSE(read.isOnTop() || read.scale());
  }
}

TEST(Settings, AFileThatCannotBeReadIsSetAsideAndTheNextOneWritten) {
  const tests::TemporaryFolder folder;
  const auto file = folder.path() / "settings.ini";
  const auto aside = folder.path() / "settings.ini.damaged";
  for (const char* rubbish : {"\x7F"
                              "ELF\n\nno settings\n",
                              "a=b\n[Card\nOnTop=true\n"}) {
    std::filesystem::remove(aside);
    std::ofstream(file) << rubbish;
    desktop::Settings(file).setPlayer("mpv");
    EXPECT_TRUE(std::filesystem::exists(aside)) << rubbish;
    EXPECT_EQ(desktop::Settings(file).player(), "mpv");
  }
  std::filesystem::remove(file);
  ASSERT_EQ(::mkfifo(file.c_str(), 0600), 0);
  desktop::Settings(file).setPlayer("vlc");
  EXPECT_EQ(desktop::Settings(file).player(), "vlc") << "a pipe would never end";
  desktop::Settings({}).setPlayer("none");
}

TEST(WorkerPool, GoingAwayDropsWhatHasNotBegunAndWaitsForWhatHas) {
  std::promise<void> release;
  bool hasFinished = false;
  bool hasRunLate = false;
  {
    desktop::WorkerPool pool(1);
    std::promise<void> begun;
    pool.async([&] {
      begun.set_value();
      release.get_future().wait();
      pool.async([&] { hasRunLate = true; });
      hasFinished = true;
    });
    begun.get_future().wait();
    const std::shared_ptr<void> dropped(nullptr, [&](void*) { release.set_value(); });
    pool.async([&hasRunLate, dropped] { hasRunLate = true; });
  }
  EXPECT_TRUE(hasFinished);
  EXPECT_FALSE(hasRunLate);
}

}  // namespace
