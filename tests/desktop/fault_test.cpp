// What goes wrong on a desktop, and what the user then sees.
#include "desktop/quorlo_desktop_test.h"

#include <csignal>
#include <filesystem>
#include <fstream>
#include <string>

namespace quorlo {
namespace {

class DesktopFaultTest : public QuorloDesktopTest {
 protected:
  struct Outcome {
    int status;
    std::string message;
  };
  // Runs the program to its end.
  Outcome run(std::vector<std::string> arguments, const Variables& more = {}) {
    const auto output = desktop().directory() / "outcome.txt";
    std::filesystem::remove(output);
    auto variables = desktop().variables();
    for (const auto& [name, value] : more) variables[name] = value;
    arguments.insert(arguments.begin(), QUORLO);
    ChildProcess process({.words = arguments, .variables = variables, .output = output});
    const int status = process.waitForEnd(kPatience);
    return {status, readFile(output)};
  }
  // 0 when there is none.
  static pid_t childNamed(pid_t process, const std::string& beginning) {
    for (const auto& task :
         std::filesystem::directory_iterator("/proc/" + std::to_string(process) + "/task")) {
      std::ifstream children(task.path() / "children");
      for (pid_t child = 0; children >> child;) {
        if (readFile("/proc/" + std::to_string(child) + "/comm").starts_with(beginning)) return child;
      }
    }
    return 0;
  }
  std::filesystem::path file(const std::string& name, const std::string& text) {
    const auto path = desktop().directory() / name;
    writeFile(path, text);
    return path;
  }
};

TEST_F(DesktopFaultTest, TheKeyboardWorksOnWhenQuorloIsKilledAndANewOneTakesOver) {
  startQuorlo();
  Xterm xterm(desktop());
  type("brb one");
  EXPECT_EQ(xterm.textOnceItIs("be right back one"), "be right back one");
  quorlo().process().signal(SIGKILL);
  quorlo().process().waitForEnd(kPatience);
  for (int i = 0; i < 2; ++i)
    desktop().windows().active();  // the server has seen the end by the second answer
  type(" brb two");
  EXPECT_EQ(xterm.textOnceItIs("be right back one brb two"), "be right back one brb two");
  startQuorlo();
  type(" brb .");
  EXPECT_EQ(xterm.textOnceItIs("be right back one brb two be right back ."),
            "be right back one brb two be right back .");
}

TEST_F(DesktopFaultTest, AStoppedQuorloLosesTheKeyboardAndFindsItAgain) {
  startQuorlo();
  Xterm xterm(desktop());
  quorlo().process().signal(SIGSTOP);
  type("x brb, ");
  EXPECT_EQ(xterm.textOnceItIs("x brb, "), "x brb, ");
  quorlo().process().signal(SIGCONT);
  // It takes a moment to see what happened; from then on abbreviations expand again.
  EXPECT_TRUE(waitUntil([&] {
    type("brb ");
    return waitUntil([&] { return xterm.text().ends_with("be right back "); }, std::chrono::seconds(1));
  })) << xterm.text();
}

TEST_F(DesktopFaultTest, QuitsAlthoughItsGuardIsStoppedOrKilled) {
  for (const int signal : {SIGSTOP, SIGKILL}) {
    startQuorlo();
    const auto guard = childNamed(quorlo().process().pid(), "quorlo-keyboard");
    ASSERT_NE(guard, 0);
    kill(guard, signal);
    const auto outcome = run({"quit"});
    EXPECT_EQ(outcome.status, 0) << outcome.message;
    EXPECT_TRUE(waitUntil([&] { return !std::filesystem::exists("/proc/" + std::to_string(guard)); }));
  }
}

TEST_F(DesktopFaultTest, ATargetThatNeverReadsTheClipboardHoldsUpNobody) {
  startQuorlo();
  Mousepad other(desktop());
  type("y");  // an editor that has taken a key does not come to the front by itself any more
  EXPECT_EQ(other.textOnceItIs("y"), "y");
  Xterm deaf(desktop());
  deaf.process().signal(SIGSTOP);
  type("brb x");
  other.activate();
  type("sig .");
  EXPECT_TRUE(waitUntil([&] { return other.text().ends_with("Kind regards, Ada ."); })) << other.text();
  deaf.process().signal(SIGCONT);
}

TEST_F(DesktopFaultTest, ASecondQuorloHandsItsLibraryToTheOneThatRunsAndEnds) {
  startQuorlo();
  const auto second = run({"--library", file("second.json", libraryOf({{"omw", "On my way!"}}))});
  EXPECT_EQ(second.status, 0) << second.message;
  EXPECT_NE(second.message.find("already"), std::string::npos) << second.message;
  EXPECT_TRUE(waitUntil([&] { return quorlo().log().find("Imported 1 snippets") != std::string::npos; }));
  Mousepad editor(desktop());
  type("brb omw .");
  EXPECT_EQ(editor.textOnceItIs("be right back On my way! ."), "be right back On my way! .");
}

TEST_F(DesktopFaultTest, FilesForTheQuorloThatRunsAreAddedAndThoseItCannotReadAreNamed) {
  startQuorlo();
  Mousepad editor(desktop());
  type("brb ");
  EXPECT_EQ(editor.textOnceItIs("be right back "), "be right back ");
  const auto isInFront = [&] {
    return desktop().windows().processOf(desktop().windows().active()) == quorlo().process().pid();
  };
  EXPECT_EQ(run({file("good.json", libraryOf({{"omw", "On my way!"}}))}).status, 0);
  EXPECT_TRUE(waitUntil(isInFront)) << "the library is not shown";
  editor.activate();
  type("omw .");
  EXPECT_EQ(editor.textOnceItIs("be right back On my way! ."), "be right back On my way! .");

  EXPECT_EQ(run({file("bad.json", "not JSON")}).status, 0);
  EXPECT_TRUE(waitUntil(isInFront)) << "nothing tells of bad.json";
  keyboard().tap("Return");
  EXPECT_TRUE(waitUntil([&] { return !isInFront(); }));
}

TEST_F(DesktopFaultTest, ACrashIsMentionedOnceAtTheNextStart) {
  startQuorlo();
  quorlo().process().signal(SIGSEGV);
  quorlo().process().waitForEnd(kPatience);
  const auto mentions = [&] {
    return quorlo().log().find("Quorlo ended unexpectedly the last time.") != std::string::npos;
  };
  restartQuorlo();
  EXPECT_TRUE(mentions()) << quorlo().log();
  restartQuorlo();
  EXPECT_FALSE(mentions()) << quorlo().log();
}

TEST_F(DesktopFaultTest, ALibraryThatCannotBeReadIsNamedAndLeftAsItIs) {
  for (const std::string text : {"not JSON", R"({"snippets":[{"abbreviation":"a"}]})", "[1", ""}) {
    const auto path = file("bad.json", text);
    const auto outcome = run({"--library", path});
    EXPECT_NE(outcome.status, 0) << text;
    EXPECT_NE(outcome.message.find("bad.json"), std::string::npos) << outcome.message;
    EXPECT_EQ(readFile(path), text);
  }
  EXPECT_NE(run({"--library", desktop().directory() / "missing.json"}).message.find("missing.json"),
            std::string::npos);
}

TEST_F(DesktopFaultTest, TwoSnippetsWithOneAbbreviationAreReportedAndTheRestWorks) {
  startQuorlo(
      libraryOf({{"brb", "be right back"}, {"brb", "brown rice bowl"}, {"sig", "Kind regards, Ada"}}));
  EXPECT_NE(quorlo().log().find("is already in use"), std::string::npos) << quorlo().log();
  Mousepad editor(desktop());
  type("sig .");
  EXPECT_EQ(editor.textOnceItIs("Kind regards, Ada ."), "Kind regards, Ada .");
}

TEST_F(DesktopFaultTest, NonsenseInTheSettingsCountsAsTheDefault) {
  startQuorlo({{"AbbreviationsTriggerType", R"("banana")"},
               {"AbbreviationDelimiterKey", "[1]"},
               {"RemoveTriggerKey", "{}"},
               {"NoSuchKey", "null"}});
  Mousepad editor(desktop());
  type("brb .");
  EXPECT_EQ(editor.textOnceItIs("be right back ."), "be right back .");
}

TEST_F(DesktopFaultTest, WithoutAnXServerItSaysSoAndEnds) {
  const auto outcome = run({"--library", file("library.json", usualLibrary())}, {{"DISPLAY", ":987"}});
  EXPECT_NE(outcome.status, 0);
  EXPECT_NE(outcome.message.find(":987"), std::string::npos) << outcome.message;
}

TEST_F(DesktopFaultTest, WithoutXtestItStartsQuietlyAndTellsWhoSwitchesAbbreviationsOnWhatIsMissing) {
  VirtualDesktop poor({"-extension", "XTEST"});
  const auto settings = poor.configHome() / "quorlo" / "shared-settings.json";
  std::filesystem::create_directories(settings.parent_path());
  writeFile(settings, R"({"AbbreviationsEnabled": true})");
  const auto process = poor.start({QUORLO, "--library", file("library.json", usualLibrary())});
  EXPECT_TRUE(waitUntil([&] { return readFile(settings).find("false") != std::string::npos; }));
  Xterm xterm(poor);
  poor.keyboard().type("brb .");
  EXPECT_EQ(xterm.textOnceItIs("brb ."), "brb .");

  writeFile(settings, R"({"AbbreviationsEnabled": true})");
  const auto isInFront = [&](const std::string& title) {
    return waitUntil([&] { return poor.windows().titleOf(poor.windows().active()) == title; });
  };
  EXPECT_TRUE(isInFront("Quorlo"));
  poor.keyboard().tap("Return");  // Open System Settings
  EXPECT_TRUE(isInFront("Watching and Pressing Keys"));
  poor.keyboard().tap("Escape");
  EXPECT_TRUE(waitUntil([&] { return poor.windows().active() == xterm.window(); }));
  EXPECT_NE(readFile(settings).find("false"), std::string::npos);
}

TEST_F(DesktopFaultTest, WhenTheXServerGoesAwayTheProgramEndsWithAMessage) {
  VirtualDesktop doomed;
  QuorloProgram program(doomed, QUORLO, usualLibrary());
  doomed.server().stop();
  const int status = program.process().waitForEnd(kPatience);
  EXPECT_LT(status, 128) << "ended by a signal";
  EXPECT_NE(program.log().find("The connection to the X server is lost."), std::string::npos)
      << program.log();
}

}  // namespace
}  // namespace quorlo
