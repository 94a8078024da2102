#include "x11/desktop/paste_chords.h"

#include "virtual_desktop/temp_dir.h"

#include <gtest/gtest.h>

namespace quorlo {
namespace {

TEST(PasteChordsTest, TerminalsAreKnownByEitherNameAndTheUserMayAddSome) {
  const TempDir directory;
  writeFile(directory / "terminals", "# mine\n\n  org.example.Term \r\nMyShell\n");
  const PasteChords chords(directory / "terminals");
  EXPECT_TRUE(chords.pastesFromPrimary("debian-xterm", "XTerm"));
  EXPECT_TRUE(chords.pastesFromPrimary("", "URxvt"));
  EXPECT_TRUE(chords.pastesFromPrimary("org.kde.konsole", ""));
  EXPECT_TRUE(chords.pastesFromPrimary("org.example.term", "X"));
  EXPECT_TRUE(chords.pastesFromPrimary("", "myshell"));
  EXPECT_FALSE(chords.pastesFromPrimary("org.gnome.TextEditor", "Gedit"));
  EXPECT_FALSE(chords.pastesFromPrimary("", ""));
  EXPECT_FALSE(PasteChords(directory / "none").pastesFromPrimary("org.example.term", "# mine"));
}

}  // namespace
}  // namespace quorlo
