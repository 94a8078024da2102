// Applications that take what is inserted in their own way, by the user's table.
#include "desktop/quorlo_desktop_test.h"

namespace quorlo {
namespace {

class DesktopApplicationsTest : public QuorloDesktopTest {
 protected:
  void writeTable(const std::string& text) {
    writeFile(desktop().configHome() / "quorlo" / "applications", text);
  }
};

// A terminal of an unknown class: Ctrl+V types a control character.
TEST_F(DesktopApplicationsTest, AnEntryMadeWhileQuorloRunsChangesTheWayOfPasting) {
  startQuorlo();
  Xterm viewer(desktop(), "viewer", "Viewer");
  type("a brb");
  type(" ");
  EXPECT_EQ(viewer.textOnceItIs("a \x16"), "a \x16");
  writeTable("viewer = terminal\n");
  type("b sig c");
  EXPECT_EQ(viewer.textOnceItIs("a \x16"
                                "b Kind regards, Ada c"),
            "a \x16"
            "b Kind regards, Ada c");
}

}  // namespace
}  // namespace quorlo
