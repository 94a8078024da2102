// Files that the user opens while the program runs.
#include "desktop/quorlo_desktop_test.h"

#include <filesystem>

namespace quorlo {
namespace {

class DesktopImportTest : public QuorloDesktopTest {
 protected:
  void open(const std::string& name, const std::string& content) {
    const auto file = desktop().home() / name;
    writeFile(file, content);
    auto command = desktop().start({QUORLO, file.string()});
    EXPECT_EQ(command.waitForEnd(kPatience), 0);
  }
  // Quorlo's window of this title; 0 when there is none.
  xcb_window_t window(const std::string& title) {
    auto& windows = desktop().windows();
    for (const auto each : windows.all()) {
      if (windows.titleOf(each) == title && windows.processOf(each) == quorlo().process().pid()) return each;
    }
    return 0;
  }
  void goTo(const std::string& title) {
    ASSERT_TRUE(waitUntil([&] { return window(title) != 0; })) << title;
    desktop().windows().activate(window(title));
  }
  // Types again until the program has taken in what was imported or taken back.
  bool becomes(Mousepad& editor, const std::string& typed, const std::string& text) {
    return waitUntil([&] {
      const auto before = editor.text();
      type(typed);
      return waitUntil([&] { return editor.text() == before + text; }, std::chrono::seconds(2));
    });
  }
  void tap(std::initializer_list<const char*> keys) {
    for (const auto* const key : keys) keyboard().tap(key);
  }
};

TEST_F(DesktopImportTest, ATableIsMappedByKeyboardExpandsAndIsTakenBack) {
  startQuorlo();
  open("table.csv", "one,two,three\nHello from the table,-,tbl\nNever used,-,nvr\n");
  goTo("Import a Table");
  // Title: none; abbreviation: the last column; text: the first. Without effect until the table is read.
  ASSERT_TRUE(waitUntil([&] {
    if (window("Import Finished") != 0) return true;
    tap({"Alt+i", "Home", "Tab", "End", "Tab", "Home", "Down", "Return"});
    return waitUntil([&] { return window("Import Finished") != 0; }, std::chrono::seconds(3));
  }));
  EXPECT_EQ(window("Import a Table"), 0U);
  Mousepad editor(desktop());
  EXPECT_TRUE(becomes(editor, "tbl .", "Hello from the table .")) << editor.text();

  goTo("Import Finished");
  tap({"Alt+u"});
  ASSERT_TRUE(waitUntil([&] { return window("Import Finished") == 0; }));
  desktop().windows().activate(editor.window());
  EXPECT_TRUE(becomes(editor, "nvr .", "nvr .")) << editor.text();
  EXPECT_TRUE(becomes(editor, "tbl .", "Hello from the table .")) << "what was used stays";
}

TEST_F(DesktopImportTest, AFileOfTheProgramsOwnIsImportedAtOnceAndABadOneExplained) {
  startQuorlo();
  open("bad.quorlo", "{\"snippets\": [{\"text\": 7}]}");
  ASSERT_TRUE(waitUntil([&] { return window("Import Snippets") != 0; }));
  goTo("Import Snippets");
  tap({"Escape"});
  ASSERT_TRUE(waitUntil([&] { return window("Import Snippets") == 0; }));
  open("good.quorlo", libraryOf({{"own", "from the program's own file"}}));
  goTo("Import Finished");
  tap({"Escape"});
  Mousepad editor(desktop());
  EXPECT_TRUE(becomes(editor, "own .", "from the program's own file .")) << editor.text();
}

}  // namespace
}  // namespace quorlo
