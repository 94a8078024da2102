#include "app/settings/settings_controller.h"
#include "fakes/fake_background_queue.h"
#include "fakes/fake_user_defaults.h"
#include "fakes/temporary_directory.h"
#include "import/csv/ql_csv_options_view_controller.h"
#include "import/import_report.h"
#include "store/test_library.h"
#include "ui/event_loop.h"
#include "ui/import/csv_options_window.h"
#include "ui/import/progress_window.h"
#include "ui/import/qt_import_view.h"
#include "ui/import/report_window.h"

#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTableView>
#include <QTest>
#include <QToolButton>

#include <fstream>
#include <memory>
#include <string>

namespace quorlo {
namespace {

template <class Button>
Button* buttonNamed(QWidget& window, const char* text) {
  for (auto* const each : window.findChildren<Button*>()) {
    if (each->text().remove(QLatin1Char('&')) == QLatin1String(text)) return each;
  }
  return nullptr;
}

// A table, the window of its options, and somebody at the keyboard.
struct CsvOptionsWindowTest : testing::Test {
  CsvOptionsWindowTest() {
    letters->setTitle(u"Letters");
    letters->setUuid("L");
  }
  void open(const std::string& table) {
    std::ofstream(directory / "table.csv") << table;
    controller = std::make_unique<QLCSVOptionsViewController>(
        QLCSVOptionsViewController::Dependencies{library.queue, background, settings},
        std::vector<std::filesystem::path>{directory / "table.csv"},
        [this](std::shared_ptr<const ImportData> made, ImportOptions chosen) {
          records = std::move(made);
          options = std::move(chosen);
        });
    window = std::make_unique<CsvOptionsWindow>(*controller, library.context, [this] { ++cancelled; });
    window->show();
    window->activateWindow();
    settle();
  }
  void settle() {
    library.queue.runDue();
    while (!background.idle()) {
      background.runAll();
      library.queue.runDue();
    }
    QCoreApplication::processEvents();
  }
  void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
    QTest::keyClick(window->focusWidget(), key, modifiers);
    settle();
  }
  // By the letter that the name of the control underlines.
  void goTo(const QString& name) {
    for (auto* const label : window->findChildren<QLabel*>()) {
      auto text = label->text();
      const auto mark = text.indexOf(QLatin1Char('&'));
      if (mark < 0 || text.remove(mark, 1) != name) continue;
      label->buddy()->setFocus(Qt::ShortcutFocusReason);
      return;
    }
    FAIL() << name.toStdString();
  }
  QString head(int column) {
    return window->findChild<QTableView*>()->model()->headerData(column, Qt::Horizontal).toString();
  }
  QString cell(int row, int column) {
    const auto* const model = window->findChild<QTableView*>()->model();
    return model->index(row, column).data().toString();
  }
  QPushButton* import() { return buttonNamed<QPushButton>(*window, "Import"); }

  TestLibrary library;
  FakeUserDefaults defaults;
  FakeBackgroundQueue background;
  TemporaryDirectory directory;
  SettingsController settings{defaults, library.queue, [] { return Date(); }, [] { return std::nullopt; }};
  std::shared_ptr<QLCategory> letters = library.folder(CategoryType::Folder);
  std::unique_ptr<QLCSVOptionsViewController> controller;
  std::unique_ptr<CsvOptionsWindow> window;
  std::shared_ptr<const ImportData> records;
  ImportOptions options;
  int cancelled = 0;
};

TEST_F(CsvOptionsWindowTest, ImportsAGuessedTableByReturnAlone) {
  open("Name;Shortcut;Text;Notes\nGreeting;hi;\"Hello\nyou\";x\n");
  EXPECT_TRUE(buttonNamed<QToolButton>(*window, "Semicolon")->isChecked());
  EXPECT_EQ(head(0), QStringLiteral("Title\nName"));
  EXPECT_EQ(head(2), QStringLiteral("Text\nText"));
  EXPECT_EQ(head(3), QStringLiteral("\nNotes"));
  EXPECT_EQ(cell(0, 2), QStringLiteral("Hello ↵ you"));
  press(Qt::Key_Return);
  ASSERT_TRUE(records);
  ASSERT_EQ(records->snippets.size(), 1U);
  EXPECT_EQ(records->snippets[0].text.string(), u"Hello\nyou");
  EXPECT_EQ(options.destination, ImportDestination(ImportAsFiled()));
  EXPECT_TRUE(options.skipDuplicates);
  EXPECT_EQ(cancelled, 0);
}

TEST_F(CsvOptionsWindowTest, IsSetByKeyboardAlone) {
  open("title|b,c\nd|e,f\n");
  goTo(QStringLiteral("Separator:"));
  for (int i = 0; i < 3; ++i) press(Qt::Key_Right);
  EXPECT_TRUE(buttonNamed<QToolButton>(*window, "Vertical Bar")->isChecked());
  EXPECT_EQ(head(1), QStringLiteral("Text\nb,c"));
  press(Qt::Key_Tab);
  press(Qt::Key_Space);
  EXPECT_EQ(head(1), QStringLiteral("Text\nColumn 2"));
  EXPECT_EQ(cell(1, 1), QStringLiteral("e,f"));
  goTo(QStringLiteral("Title:"));
  press(Qt::Key_Home);
  press(Qt::Key_Tab);
  press(Qt::Key_End);
  press(Qt::Key_Tab);
  EXPECT_EQ(head(0), QStringLiteral("\nColumn 1"));
  EXPECT_EQ(head(1), QStringLiteral("Abbreviation, Text\nColumn 2"));
  press(Qt::Key_Home);
  press(Qt::Key_Down);  // the first column
  goTo(QStringLiteral("Folder:"));
  press(Qt::Key_End);
  EXPECT_FALSE(import()->isEnabled()) << "a new folder needs a name";
  QTest::keyClicks(window->focusWidget(), QStringLiteral("New"));
  EXPECT_TRUE(import()->isEnabled());
  press(Qt::Key_Tab);
  press(Qt::Key_Space);
  import()->click();
  settle();
  ASSERT_TRUE(records);
  ASSERT_EQ(records->snippets.size(), 2U);
  EXPECT_EQ(records->snippets[1].abbreviation, u"e,f");
  EXPECT_EQ(records->snippets[1].text.string(), u"d");
  EXPECT_EQ(options.destination, ImportDestination(ImportIntoTitled{u"New"}));
  EXPECT_FALSE(options.skipDuplicates);
}

TEST_F(CsvOptionsWindowTest, OffersTheFoldersOfTheLibrary) {
  open("title,text\na,b\n");
  goTo(QStringLiteral("Folder:"));
  press(Qt::Key_Down);
  import()->click();
  settle();
  EXPECT_EQ(options.destination, ImportDestination(ImportIntoFolder{"L"}));
}

TEST_F(CsvOptionsWindowTest, LeavesWithoutImporting) {
  open("title,text\na,b\n");
  press(Qt::Key_Escape);
  EXPECT_EQ(cancelled, 1);
  open("title,text\na,b\n");
  window->close();
  EXPECT_EQ(cancelled, 2);
  open("title,text\na,b\n");
  import()->click();  // and while the records are made
  buttonNamed<QPushButton>(*window, "Cancel")->click();
  settle();
  EXPECT_EQ(cancelled, 3);
  EXPECT_FALSE(records);
}

TEST_F(CsvOptionsWindowTest, SaysWhyThereIsNothingToImport) {
  open("");
  EXPECT_FALSE(import()->isEnabled());
  open("a,b\nc,\xE4\n");
  EXPECT_TRUE(import()->isEnabled());
  QStringList shown;
  for (const auto* const label : window->findChildren<QLabel*>()) shown << label->text();
  EXPECT_TRUE(shown.join(QLatin1Char(' ')).contains(QStringLiteral("Windows-1252")))
      << "the encoding is a guess";
  std::filesystem::remove(directory / "table.csv");
}

struct ImportViewTest : testing::Test {
  ImportViewTest() {
    view.setEvents({.cancelOptions = {},
                    .cancelImport = [this] { happened << "cancel"; },
                    .undoImport = [this] { happened << "undo"; },
                    .showImported = [this] { happened << "show"; },
                    .saveReport = {},
                    .closeReport =
                        [this] {
                          happened << "close";
                          view.close();
                        }});
  }
  // Of this class and shown; null when there is none.
  template <class Window>
  static Window* shown() {
    for (auto* const each : QApplication::topLevelWidgets()) {
      if (auto* const window = dynamic_cast<Window*>(each); window && window->isVisible()) return window;
    }
    return nullptr;
  }
  TestLibrary library;
  QtImportView view{library.context};
  QStringList happened;
};

TEST_F(ImportViewTest, ReportsWhatCameAndWhatDidNot) {
  ImportReport report;
  report.addedSnippets = 2;
  report.refusedAbbreviations = 1;
  report.notices = {{u"Greeting", u"The abbreviation is taken."}};
  report.refusedFiles = {Error{"x.csv is empty."}};
  view.showReport(report);
  auto* const window = shown<ReportWindow>();
  ASSERT_TRUE(window);
  const auto* const list = window->findChild<QTableView*>()->model();
  EXPECT_EQ(list->rowCount(), 2);
  EXPECT_EQ(list->index(0, 1).data().toString(), QStringLiteral("x.csv is empty."));
  EXPECT_EQ(list->index(1, 0).data().toString(), QStringLiteral("Greeting"));
  for (const auto* const name : {"Undo Import", "Show", "Close"}) {
    buttonNamed<QPushButton>(*window, name)->click();
    QTest::qWait(0);
  }
  EXPECT_TRUE(runEventLoopUntil([&] { return happened.size() == 3; }));
  EXPECT_EQ(happened, (QStringList{"undo", "show", "close"}));
  EXPECT_FALSE(shown<ReportWindow>());
  view.showReport(ImportReport());
  EXPECT_FALSE(buttonNamed<QPushButton>(*shown<ReportWindow>(), "Undo Import"));
}

TEST_F(ImportViewTest, ShowsAProgressOnlyWhenItTakesLongerAndCancelsOnce) {
  WorkProgress progress;
  view.showProgress(u"Importing", progress);
  runEventLoopFor(Seconds(0.1));
  EXPECT_FALSE(shown<ProgressWindow>());
  ASSERT_TRUE(runEventLoopUntil([] { return shown<ProgressWindow>() != nullptr; }));
  QTest::keyClick(shown<ProgressWindow>(), Qt::Key_Escape);
  QTest::keyClick(shown<ProgressWindow>(), Qt::Key_Escape);
  EXPECT_TRUE(runEventLoopUntil([&] { return !happened.empty(); }));
  EXPECT_TRUE(shown<ProgressWindow>()) << "until the import has come to its end";
  view.close();
  EXPECT_EQ(happened, QStringList{"cancel"});
  EXPECT_FALSE(shown<ProgressWindow>());
}

}  // namespace
}  // namespace quorlo
