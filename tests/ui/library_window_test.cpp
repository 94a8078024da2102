#include "ui/library/library_window.h"

#include "app/settings/settings_controller.h"
#include "app/shell/app_windows.h"
#include "app/shell/menu/navigation_model.h"
#include "fakes/fake_user_defaults.h"
#include "store/test_library.h"
#include "ui/library/attributed_document.h"
#include "ui/library/snippet_form.h"
#include "ui/library/snippet_list_model.h"

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QDropEvent>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMimeData>
#include <QTest>
#include <QTextDocument>
#include <QTextEdit>
#include <QToolBar>
#include <QTreeView>
#include <QUrl>

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

namespace quorlo {
namespace {

struct NoWindows final : AppWindows {
  void openWindow(std::string_view) override {}
  bool isWindowVisible(std::string_view) const override { return true; }
  void closeSheets() override {}
  bool commitEditing() override { return true; }
};

// A library with two folders, and somebody at the window's keyboard.
struct LibraryWindowTest : testing::Test {
  LibraryWindowTest() {
    all->setSort(-1);
    letters->setTitle(u"Letters");
    hello->setCategory(letters.get());
    hello->setPlainText(u"Hello!");
    other->setPlainText(u"Good bye");
    defaults.setValue(DefaultsDomain::standard, "AscendingSnippetSortation", true);
    settings.setSnippetsSortOption(SnippetSortOption::title);
    settings.setAscendingSnippetSortation(true);
    navigation.setSelectedCategory(all);
    window.show();
    settle();
  }
  void settle() {
    library.queue.runDue();
    QCoreApplication::processEvents();
  }
  template <class Widget>
  Widget* find(const char* name) {
    return window.findChild<Widget*>(QString::fromLatin1(name));
  }
  void typeInto(QWidget* field, const QString& text) {
    field->setFocus();
    QTest::keyClick(field, Qt::Key_A, Qt::ControlModifier);
    QTest::keyClicks(field, text);
  }
  void trigger(const QString& name) {
    for (auto* action : window.actions()) {
      const auto shown = action->text().remove(QLatin1Char('&'));
      if (shown == name && action->isEnabled()) action->trigger();
    }
    settle();
  }
  QStringList shownTitles() {
    const auto* const model = find<QTreeView>("snippets")->model();
    QStringList titles;
    for (int row = 0; row < model->rowCount(); ++row) titles << model->index(row, 0).data().toString();
    return titles;
  }

  TestLibrary library;
  FakeUserDefaults defaults;
  SettingsController settings{defaults, library.queue, [this] { return library.environment.now(); },
                              [] { return std::nullopt; }};
  NoWindows windows;
  NavigationModel navigation{windows};
  std::shared_ptr<QLCategory> all = library.folder(CategoryType::AllSnippets, SourceType::General);
  std::shared_ptr<QLCategory> letters = library.folder(CategoryType::Folder);
  std::shared_ptr<QLCategory> trash = library.folder(CategoryType::Trash, SourceType::General);
  std::shared_ptr<QLSnippet> hello = library.snippet(u"Hello", u"hi");
  std::shared_ptr<QLSnippet> other = library.snippet(u"Other", u"bye");
  std::vector<std::filesystem::path> imported;
  ImportDestination importedInto;
  ExportOffer exported;
  LibraryWindow window{{library.context,
                        settings,
                        navigation,
                        [this](std::u16string_view abbreviation, const QLSnippet& snippet) {
                          return abbreviation == u"bye" && &snippet != other.get()
                                     ? std::optional(std::u16string(u"Taken."))
                                     : std::nullopt;
                        },
                        [](std::u16string_view abbreviation, const QLSnippet&) {
                          return abbreviation == u"hey" ? std::optional(std::u16string(u"Unfortunate."))
                                                        : std::nullopt;
                        },
                        [] { return std::u16string(u"Untitled"); },
                        [] {},
                        {.importFiles =
                             [this](const auto& files, const ImportOptions& options) {
                               imported = files;
                               importedInto = options.destination;
                             },
                         .canUndoImport = [] { return false; },
                         .undoImport = {},
                         .exportSnippets = [this](const ExportOffer& offer) { exported = offer; },
                         .showBackups = {}}}};
};

TEST_F(LibraryWindowTest, WhatIsTypedReachesTheSnippetAndABadAbbreviationIsExplainedAndKeptOut) {
  navigation.select(hello);
  settle();
  auto* const abbreviation = find<QLineEdit>("abbreviation");
  auto* const fault = find<QLabel>("abbreviationFault");
  typeInto(find<QLineEdit>("title"), QStringLiteral("Greeting"));
  typeInto(abbreviation, QStringLiteral("bye"));
  EXPECT_EQ(fault->text(), QStringLiteral("Taken."));
  EXPECT_FALSE(window.commitEditing());
  EXPECT_EQ(hello->abbreviation(), u"hi");
  typeInto(abbreviation, QStringLiteral("hey"));
  EXPECT_EQ(fault->text(), QStringLiteral("Unfortunate."));
  typeInto(window.findChild<QTextEdit*>(), QStringLiteral("Hello there"));
  EXPECT_TRUE(window.commitEditing());
  EXPECT_EQ(hello->title(), u"Greeting");
  EXPECT_TRUE(hello->titleIsCustom());
  EXPECT_EQ(hello->abbreviation(), u"hey");
  EXPECT_EQ(hello->plainText(), u"Hello there");
}

TEST_F(LibraryWindowTest, AnotherSnippetTakesOverWhatWasTypedAndOthersChangesDoNotUndoIt) {
  navigation.select(hello);
  auto* const text = window.findChild<QTextEdit*>();
  typeInto(text, QStringLiteral("mine"));
  hello->setUseCount(7);
  hello->setPlainText(u"from elsewhere");
  settle();
  EXPECT_EQ(text->toPlainText(), QStringLiteral("mine"));
  navigation.select(other);
  settle();
  EXPECT_EQ(hello->plainText(), u"mine");
  EXPECT_EQ(text->toPlainText(), QStringLiteral("Good bye"));
  other->setPlainText(u"changed elsewhere");
  EXPECT_EQ(text->toPlainText(), QStringLiteral("changed elsewhere"));
}

TEST_F(LibraryWindowTest, ListsWhatTheFolderAndTheSearchShowAndFollowsTheLibrary) {
  EXPECT_EQ(shownTitles(), (QStringList{"Hello", "Other"}));
  find<QLineEdit>("search")->setText(QStringLiteral("GOOD"));
  EXPECT_EQ(shownTitles(), (QStringList{"Other"}));
  find<QLineEdit>("search")->clear();
  auto* const folders = find<QListView>("folders");
  folders->setCurrentIndex(folders->model()->index(2, 0));
  EXPECT_EQ(navigation.selectedCategory(), letters);
  EXPECT_EQ(shownTitles(), (QStringList{"Hello"}));
  other->setCategory(letters.get());
  settle();
  EXPECT_EQ(shownTitles(), (QStringList{"Hello", "Other"}));
}

TEST_F(LibraryWindowTest, SnippetsAreMadeDuplicatedTrashedAndPutBack) {
  navigation.setSelectedCategory(letters);
  trigger(QStringLiteral("New Snippet"));
  ASSERT_EQ(navigation.selectedSnippets().size(), 1U);
  const auto fresh = navigation.selectedSnippets().front();
  EXPECT_EQ(fresh->category(), letters);

  navigation.select(hello);
  trigger(QStringLiteral("Duplicate"));
  const auto copy = navigation.selectedSnippets().front();
  EXPECT_NE(copy, hello);
  EXPECT_EQ(copy->plainText(), u"Hello!");
  EXPECT_EQ(copy->abbreviation(), u"");

  navigation.select(hello);
  settle();
  trigger(QStringLiteral("Move to Trash"));
  EXPECT_TRUE(hello->deletionDate());
  navigation.setSelectedCategory(trash);
  navigation.setSelectedSnippets({hello});
  settle();
  trigger(QStringLiteral("Put Back"));
  EXPECT_FALSE(hello->deletionDate());
}

TEST_F(LibraryWindowTest, FilesAreDroppedOnTheWindowOrOnAFolderAndTheSelectionIsOfferedForExport) {
  QMimeData files;
  files.setUrls(
      {QUrl::fromLocalFile(QStringLiteral("/tmp/a b.csv")), QUrl::fromLocalFile(QStringLiteral("/b"))});
  QDragEnterEvent enter({5, 5}, Qt::CopyAction, &files, Qt::LeftButton, {});
  QCoreApplication::sendEvent(&window, &enter);
  EXPECT_TRUE(enter.isAccepted());
  QDropEvent drop({5, 5}, Qt::CopyAction, &files, Qt::LeftButton, {});
  QCoreApplication::sendEvent(&window, &drop);
  EXPECT_EQ(imported, (std::vector<std::filesystem::path>{"/tmp/a b.csv", "/b"}));
  EXPECT_EQ(importedInto, ImportDestination(ImportAsFiled()));
  imported.clear();
  auto* const folders = find<QListView>("folders")->model();
  EXPECT_TRUE(folders->dropMimeData(&files, Qt::CopyAction, -1, -1, folders->index(2, 0)));
  EXPECT_EQ(imported.size(), 2U);
  EXPECT_EQ(importedInto, ImportDestination(ImportIntoFolder{letters->uuid()}));
  imported.clear();
  QMimeData page;
  page.setUrls({QUrl(QStringLiteral("https://example.org/a.csv"))});
  QDropEvent dropOfPage({5, 5}, Qt::CopyAction, &page, Qt::LeftButton, {});
  QCoreApplication::sendEvent(&window, &dropOfPage);
  EXPECT_TRUE(imported.empty());

  navigation.setSelectedCategory(letters);
  navigation.select(hello);
  settle();
  trigger(QStringLiteral("Export…"));
  ASSERT_TRUE(exported.folder);
  EXPECT_EQ(exported.folder->uuid, letters->uuid());
  EXPECT_EQ(exported.snippets, std::vector<std::string>{hello->uuid()});
}

TEST(AttributedDocumentTest, GivesBackFormatsPicturesAndMarks) {
  TextAttributes bold;
  bold.bold = true;
  bold.fontFamily = "DejaVu Sans";
  bold.fontSizePoints = 14;
  TextAttributes colours;
  colours.foreground = Color{200, 10, 20};
  colours.background = Color{1, 2, 3};
  colours.underline = colours.strikethrough = colours.italic = true;
  TextAttributes link;
  link.link = "https://example.org/?a=b";
  TextAttributes picture;
  picture.image = ImageAttachment{std::make_shared<std::vector<std::uint8_t>>(3, 1), "image/png"};
  TextAttributes marked;
  marked.custom = {{"key", "value"}};
  AttributedString text(u"plain\n");
  text.append(u"bold\ntwo lines\n", bold);
  text.append(u"colours", colours);
  text.append(u"\uFFFC\uFFFC", picture);
  text.append(u"link", link);
  text.append(u"\n\n");
  text.append(u"marked 😀", marked);

  QTextDocument document;
  setContents(document, text);
  EXPECT_EQ(attributedString(document), text);
  EXPECT_FALSE(document.isUndoAvailable());
}

TEST_F(LibraryWindowTest, KeepsTheSortationWhenItOpens) {
  settings.setSnippetsSortOption(SnippetSortOption::creationDate);
  const LibraryWindow another{{library.context, settings, navigation, {}, {}, {}, {}, {}}};
  settle();
  EXPECT_EQ(settings.snippetsSortOption(), SnippetSortOption::creationDate);
  EXPECT_TRUE(settings.ascendingSnippetSortation());
}

TEST_F(LibraryWindowTest, ShowsTheFormatBarAndUseCountsAsTheSettingsSay) {
  hello->setFormatted(static_cast<std::int64_t>(SnippetType::formatted));
  navigation.select(hello);
  settle();
  const auto* const bar = window.findChild<SnippetForm*>()->findChild<QToolBar*>();
  EXPECT_TRUE(bar->isVisible());
  settings.setShowFormatInspector(false);
  library.queue.advance(Seconds(0.25));
  EXPECT_FALSE(bar->isVisible());
  navigation.select(other);
  navigation.select(hello);
  settle();
  EXPECT_FALSE(bar->isVisible());
  const auto* const list = find<QTreeView>("snippets");
  EXPECT_FALSE(list->isColumnHidden(SnippetListModel::usesColumn));
  settings.setShowSnippetUseCount(false);
  EXPECT_TRUE(list->isColumnHidden(SnippetListModel::usesColumn));
}

}  // namespace
}  // namespace quorlo
