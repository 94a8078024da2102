#include "app/settings/settings_controller.h"
#include "fakes/fake_user_defaults.h"
#include "store/exchange/library_document.h"
#include "store/test_library.h"
#include "ui/library/dragged_snippets.h"
#include "ui/library/folder_list_model.h"
#include "ui/library/snippet_list_model.h"

#include <gtest/gtest.h>

#include <QUrl>

#include <memory>

namespace quorlo {
namespace {

// The two lists of the library window, and a hand that drags from one to the other.
struct SnippetDragTest : testing::Test {
  SnippetDragTest() {
    letters->setTitle(u"Letters");
    snippet->setPlainText(u"Hello");
    AttributedString text(u"\uFFFC", {.image = ImageAttachment{nullptr, "image/png"}});
    text.append(u"!");
    picture->setText(text);
    snippets.show(all, {});
    folders.refresh();
    QObject::connect(&folders, &FolderListModel::snippetsDropped,
                     [this](const auto& dropped, const auto& folder) {
                       droppedOn = {dropped.size(), folder};
                     });
    QObject::connect(&folders, &FolderListModel::filesDropped, [this](const auto& files, const auto& folder) {
      droppedOn = {files.size(), folder};
    });
  }
  std::unique_ptr<QMimeData> dragAll() {
    QModelIndexList indexes;
    for (int row = 0; row < snippets.rowCount(); ++row) {
      for (int column = 0; column < snippets.columnCount(); ++column) indexes << snippets.index(row, column);
    }
    return std::unique_ptr<QMimeData>(snippets.mimeData(indexes));
  }
  bool drop(const QMimeData& data, const QLCategory* folder) {
    const auto place = folders.indexOf(folder);
    const bool isTaken = folders.canDropMimeData(&data, Qt::MoveAction, -1, -1, place);
    EXPECT_EQ(folders.dropMimeData(&data, Qt::MoveAction, -1, -1, place), isTaken);
    return isTaken;
  }

  TestLibrary library;
  std::shared_ptr<QLCategory> all = library.folder(CategoryType::AllSnippets, SourceType::General);
  std::shared_ptr<QLCategory> trash = library.folder(CategoryType::Trash, SourceType::General);
  std::shared_ptr<QLCategory> letters = library.folder(CategoryType::Folder);
  std::shared_ptr<QLSnippet> snippet = library.snippet(u"One", u"one");
  std::shared_ptr<QLSnippet> picture = library.snippet(u"Two");
  FakeUserDefaults defaults;
  SettingsController settings{defaults, library.queue, [this] { return library.environment.now(); },
                              [] { return std::nullopt; }};
  SnippetListModel snippets{library.context, settings};
  FolderListModel folders{library.context};
  std::pair<std::size_t, std::shared_ptr<QLCategory>> droppedOn;
};

TEST_F(SnippetDragTest, GivesOtherProgramsTextAndAnotherQuorloTheSnippets) {
  const auto both = dragAll();
  EXPECT_EQ(both->text(), QStringLiteral("Hello\n!"));
  const auto one = std::unique_ptr<QMimeData>(snippets.mimeData({snippets.index(0, 0)}));
  const auto form = one->data(QStringLiteral("application/x-quorlo-snippet+json"));
  EXPECT_TRUE(form.startsWith('{')) << form.toStdString();
  snippet->setCategory(letters.get());
  const auto folder = std::unique_ptr<QMimeData>(folders.mimeData({folders.indexOf(letters.get())}));
  EXPECT_EQ(folder->text(), QStringLiteral("Hello"));

  TestLibrary other;
  for (const auto& [data, type] : {std::pair(both.get(), "application/x-quorlo-snippet+json"),
                                   std::pair(folder.get(), "application/x-quorlo-folder+json")}) {
    const auto document = data->data(QString::fromLatin1(type)).toStdString();
    ASSERT_TRUE(readLibrary(document, type, other.context)) << document;
  }
  EXPECT_EQ(other.controller.snippet(picture->uuid())->text(), picture->text());
  EXPECT_NE(other.controller.folder(letters->uuid()), nullptr);
}

TEST_F(SnippetDragTest, LetsFoldersTakeSnippetsAndFilesAndTheTrashSnippetsAlone) {
  const auto both = dragAll();
  const auto folder = std::unique_ptr<QMimeData>(folders.mimeData({folders.indexOf(letters.get())}));
  QMimeData files;
  files.setUrls({QUrl(QStringLiteral("file:///tmp/a.csv"))});

  EXPECT_TRUE(drop(*both, trash.get()));
  EXPECT_EQ(droppedOn, std::pair(std::size_t{2}, trash));
  EXPECT_TRUE(drop(*both, letters.get()));
  EXPECT_TRUE(drop(files, letters.get()));
  EXPECT_EQ(droppedOn, std::pair(std::size_t{1}, letters));
  EXPECT_FALSE(drop(files, trash.get()));
  EXPECT_FALSE(drop(*both, all.get()));
  EXPECT_FALSE(drop(*folder, letters.get()));
  EXPECT_FALSE(drop(*both, nullptr));
}

}  // namespace
}  // namespace quorlo
