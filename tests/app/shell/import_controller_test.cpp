#include "app/shell/files/import_controller.h"

#include "app/settings/settings_controller.h"
#include "app/shell/app_windows.h"
#include "app/shell/menu/navigation_model.h"
#include "fakes/fake_app_windows.h"
#include "fakes/fake_background_queue.h"
#include "fakes/fake_environment.h"
#include "fakes/fake_import_view.h"
#include "fakes/fake_main_queue.h"
#include "fakes/fake_user_defaults.h"
#include "fakes/temporary_directory.h"
#include "import/library_import.h"
#include "store/history/history_reader.h"
#include "store/persistence_controller.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "store/sqlite/file/store_opening.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <fstream>
#include <iterator>

namespace quorlo {
namespace {

using testing::AllOf;
using testing::HasSubstr;

struct ImportControllerTest : testing::Test {
  ImportControllerTest() {
    environment.data = directory.path();
    persistence = std::move(PersistenceController::open(queue, environment, {}).value());
    persistence->createBuiltInFolders();
    libraryImport.emplace(LibraryImport::Dependencies{
        queue, background, *persistence, directory / kStoreFileName, [this] { return environment.now(); }});
    controller.emplace(ImportController::Dependencies{queue, background, settings, *persistence, navigation,
                                                      *libraryImport, view});
  }

  std::filesystem::path file(const std::string& name, const std::string& content) {
    std::ofstream(directory / name, std::ios::binary) << content;
    return directory / name;
  }
  void work() {
    while (!background.idle() || !queue.idle()) {
      background.runAll();
      queue.runDue();
      if (background.idle()) queue.settle();
    }
  }
  // As the history observer does it.
  void takeIn() {
    HistoryReader reader(directory / kStoreFileName, context().writer(), Date::min(), std::chrono::seconds(1));
    ASSERT_TRUE(context().refresh(reader.read(Date::min()).value().changes.records));
    queue.settle();
  }
  ManagedObjectContext& context() { return persistence->managedObjectContext(); }

  TemporaryDirectory directory{TemporaryDirectory::quickParent()};
  FakeMainQueue queue;
  FakeBackgroundQueue background;
  FakeEnvironment environment;
  FakeUserDefaults defaults;
  SettingsController settings{defaults, queue, [this] { return environment.now(); },
                              [] { return std::optional<Date>(); }};
  FakeAppWindows windows;
  NavigationModel navigation{windows};
  FakeImportView view;
  std::unique_ptr<PersistenceController> persistence;
  std::optional<LibraryImport> libraryImport;
  std::optional<ImportController> controller;
};

TEST_F(ImportControllerTest, ImportsOtherFilesAtOnceAndTablesByTheirOptions) {
  const auto table = file("table.csv", "title,abbreviation,text\na,aa,one\nb,bb,two\n");
  const auto library =
      file("my.quorlo", R"({"snippets": [{"uuid": "S", "text": "x"}, {"uuid": "T", "text": "y"}],
                                             "folders": [{"uuid": "F", "title": "Mine", "snippets": ["S", "T"]}]})");
  controller->importFiles({table, library, directory / "none.json"});
  EXPECT_EQ(view.screen, "progress");
  EXPECT_FALSE(controller->canUndo());
  work();
  EXPECT_EQ(view.screen, "report: 2 snippets were added. 1 folder was added. 1 file was not imported.");
  EXPECT_TRUE(windows.isWindowVisible(kSnippetEditorWindow));
  EXPECT_EQ(navigation.selectedCategory(), nullptr);
  takeIn();
  EXPECT_EQ(navigation.selectedCategory(), persistence->folder("F"));

  view.user.closeReport();
  ASSERT_EQ(view.screen, "options table.csv");
  work();
  view.options->setImportOptions({.destination = ImportIntoTitled{u"From the table"}});
  view.options->confirmOptions();
  work();
  EXPECT_EQ(view.screen, "report: 2 snippets were added. 1 folder was added.");
  takeIn();
  EXPECT_EQ(navigation.selectedCategory()->title(), u"From the table");
  EXPECT_EQ(context().liveSnippet(u"bb").value()->plainText(), u"two");
  view.user.closeReport();
  EXPECT_EQ(view.screen, "");

  controller->importFiles({table});
  work();
  view.options->cancel();
  view.user.cancelOptions();
  EXPECT_EQ(view.screen, "");
}

TEST_F(ImportControllerTest, UndoesTheLastImportAndSavesItsReport) {
  controller->importFiles({file("a.json", R"([{"text": "x", "abbreviation": "x x"}])")});
  work();
  const auto report = directory / "report.txt";
  view.user.saveReport(report);
  std::ifstream in(report);
  EXPECT_THAT(std::string(std::istreambuf_iterator(in), {}),
              AllOf(HasSubstr("1 snippet was added."), HasSubstr("x x")));
  view.user.saveReport(directory / "none" / "report.txt");
  EXPECT_THAT(view.screen, HasSubstr("The report could not be saved."));
  view.user.closeReport();
  EXPECT_THAT(view.screen, HasSubstr("report: "));

  takeIn();
  EXPECT_EQ(navigation.selectedSnippets().size(), 1U);
  int changes = 0;
  const auto observation = controller->observe([&changes] { ++changes; });
  view.user.undoImport();
  EXPECT_FALSE(controller->canUndo());
  work();
  EXPECT_EQ(view.screen, "The import was undone. 1 snippet was removed.");
  EXPECT_FALSE(controller->canUndo());
  EXPECT_GE(changes, 2);
  takeIn();
  EXPECT_TRUE(context().fetch<QLSnippet>({}).value().empty());
}

TEST_F(ImportControllerTest, SaysWhyNothingCameAndIsSilentWhenTheUserCancelled) {
  controller->importFiles({directory / "none.quorlo", file("other.json", "no document")});
  work();
  EXPECT_THAT(view.screen,
              AllOf(HasSubstr("Nothing was imported."), HasSubstr("none.quorlo"), HasSubstr("other.json")));
  EXPECT_FALSE(windows.isWindowVisible(kSnippetEditorWindow));
  view.user.closeReport();

  controller->importFiles({file("a.json", R"([{"text": "x"}])")}, {.destination = ImportIntoFolder{"gone"}});
  work();
  EXPECT_THAT(view.screen, HasSubstr("The import failed. The folder to import into"));
  view.user.closeReport();

  controller->importFiles({directory / "a.json"});
  view.user.cancelImport();
  work();
  EXPECT_EQ(view.screen, "");
  EXPECT_FALSE(controller->canUndo());
}

}  // namespace
}  // namespace quorlo
