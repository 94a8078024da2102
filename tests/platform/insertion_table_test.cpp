#include "platform/insertion/insertion_table.h"

#include "platform/insertion/insertion_file.h"

#include <gtest/gtest.h>

#include <string>

namespace quorlo {
namespace {

constexpr ModifierFlags kCtrl = modifier::kCommand;

TEST(InsertionProfileTest, AWayIsReadAsItIsWritten) {
  struct Case {
    std::string text;
    InsertionProfile profile;
    std::string written = text;  // by toText()
  };
  const InsertionProfile gvim{.pasteChords = {{kCtrl, U'r'}, {kCtrl, U'o'}, {0, U'+'}}};
  const Case cases[] = {
      {"paste Shift+Insert", {.pasteChords = {{modifier::kShift, key::kHelp}}}},
      {"PASTE control+R  Ctrl+o Plus ", gvim, "paste Ctrl+r Ctrl+o Plus"},
      {"paste Ctrl+Shift+v, pause 0.2",
       {.pasteChords = {{kCtrl | modifier::kShift, U'v'}}, .pauseAfterCaretMoves = Seconds(0.2)}},
      {"paste Super+Alt+ä", {.pasteChords = {{modifier::kControl | modifier::kOption, U'ä'}}}},
      {"terminal", terminalProfile()},
      {"Type", {.method = InsertionMethod::type}, "type"},
      {"off", {.method = InsertionMethod::none}},
      {"pause 1", {.pauseAfterCaretMoves = Seconds(1)}},
  };
  for (const auto& each : cases) {
    const auto profile = parseInsertionProfile(each.text);
    ASSERT_TRUE(profile) << each.text << ": " << profile.error().message;
    EXPECT_EQ(profile.value(), each.profile) << each.text;
    EXPECT_EQ(toText(profile.value()), each.written);
  }
}

TEST(InsertionProfileTest, AnErrorSaysWhatToWrite) {
  const std::pair<std::string, std::string> cases[] = {
      {"", "The way is missing. Write for instance: paste Shift+Insert"},
      {"paste", "After \"paste\" comes a key combination, like Shift+Insert."},
      {"paste Hyper+V",
       "\"Hyper+V\" is no key combination. Write it like Shift+Insert, Ctrl+Shift+V or Plus."},
      {"pause soon", "\"soon\" is no pause. Write seconds from 0 to 5, like 0.2."},
      {"pause 6", "\"6\" is no pause. Write seconds from 0 to 5, like 0.2."},
      {"pause nan", "\"nan\" is no pause. Write seconds from 0 to 5, like 0.2."},
      {"type, off", "There are several ways; leave one of \"paste\", \"terminal\", \"type\" and \"off\"."},
      {"Shift+Insert",
       "\"Shift+Insert\" is not known. Write \"paste\" with key combinations, \"terminal\", \"type\", \"off\" or "
       "\"pause\" with seconds."},
  };
  for (const auto& [text, message] : cases) {
    const auto profile = parseInsertionProfile(text);
    ASSERT_FALSE(profile) << text;
    EXPECT_EQ(profile.error().message, message);
  }
}

TEST(InsertionTableTest, KnownApplicationsAreFoundByEitherNameAndTheUsersEntriesComeFirst) {
  const InsertionTable table({{"org.example.Term", terminalProfile()},
                              {"Emacs", {.method = InsertionMethod::type}},
                              {"emacs", {.method = InsertionMethod::none}}});
  const auto usual = InsertionProfile();
  EXPECT_EQ(table.profileFor("debian-xterm", "XTerm"), terminalProfile());
  EXPECT_EQ(table.profileFor("", "URxvt"), terminalProfile());
  EXPECT_EQ(table.profileFor("org.kde.konsole", ""), terminalProfile());
  EXPECT_EQ(table.profileFor("org.example.term", "X"), terminalProfile());
  EXPECT_EQ(table.profileFor("emacs-lucid", "EMACS").method, InsertionMethod::none) << "the last entry";
  EXPECT_EQ(InsertionTable().profileFor("emacs", "Emacs").pasteChords,
            (std::vector<KeyChord>{{modifier::kShift, key::kHelp}}));
  EXPECT_EQ(table.profileFor("libreoffice-writer", "").pauseAfterCaretMoves, Seconds(0.5));
  EXPECT_EQ(table.profileFor("org.gnome.TextEditor", "Gedit"), usual);
  EXPECT_EQ(table.profileFor("", ""), usual);
}

TEST(InsertionFileTest, BadLinesAreNamedAndGoodOnesCount) {
  const auto file =
      readInsertionFile("# mine\n\nemacs = type\r\nviewer\n = off\nViewer=paste Insert, pause 9\nx=off");
  EXPECT_EQ(file.entries, (std::vector<InsertionEntry>{{"emacs", {.method = InsertionMethod::type}},
                                                       {"x", {.method = InsertionMethod::none}}}));
  ASSERT_EQ(file.problems.size(), 3U);
  EXPECT_EQ(file.problems[0].message,
            "Line 4: Write the application, \"=\" and the way, for instance: emacs = paste Shift+Insert");
  EXPECT_TRUE(file.problems[1].message.starts_with("Line 5: Write the application"));
  EXPECT_EQ(file.problems[2].message, "Line 6: \"9\" is no pause. Write seconds from 0 to 5, like 0.2.");
  EXPECT_EQ(
      readTerminalsFile("# mine\n\n  org.example.Term \r\nMyShell\n"),
      (std::vector<InsertionEntry>{{"org.example.Term", terminalProfile()}, {"MyShell", terminalProfile()}}));
}

TEST(InsertionFileTest, AChangeOfOneLineLeavesTheOthers) {
  const std::string text = "# mine\nEmacs = type\nbroken\n\nemacs = off\nx = off";
  EXPECT_EQ(withEntry(text, {"emacs", {.pauseAfterCaretMoves = Seconds(0.5)}}),
            "# mine\nemacs = pause 0.5\nbroken\n\nx = off\n");
  EXPECT_EQ(withEntry("", {"y", terminalProfile()}), "y = terminal\n");
  EXPECT_EQ(withoutEntry(text, "EMACS"), "# mine\nbroken\n\nx = off\n");
  EXPECT_EQ(withoutEntry(text, "# mine"), text + "\n");
}

}  // namespace
}  // namespace quorlo
