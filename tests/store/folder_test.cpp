#include "test_library.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

namespace quorlo {
namespace {

using Titles = std::vector<std::u16string>;

// One snippet for each way in which folders tell snippets apart.
struct MixedLibrary : TestLibrary {
  std::shared_ptr<QLCategory> userFolder = folder(CategoryType::Folder);
  std::shared_ptr<QLCategory> trashFolder = folder(CategoryType::Trash, SourceType::General);
  std::shared_ptr<QLCategory> sharedFolder = folder(CategoryType::SharedFolder, SourceType::Public);

  MixedLibrary() {
    add(u"plain", 0);
    add(u"formatted", 1)->setCategory(userFolder.get());
    add(u"image", 2)->setCategory(sharedFolder.get());
    add(u"code", 8)->setUseCount(1);
    add(u"odd", 3)->setCategory(userFolder.get());
    add(u"used in trash folder", 0)->setUseCount(5);
    last->setCategory(trashFolder.get());
    add(u"trashed", 8)->setUseCount(5);
    last->setCategory(userFolder.get());
    last->moveToTrash();
  }

  std::shared_ptr<QLSnippet> add(std::u16string title, std::int64_t formatted) {
    last = snippet(std::move(title));
    last->setFormatted(formatted);
    return last;
  }
  std::shared_ptr<QLSnippet> last;
};

TEST(Folder, ShowsTheSnippetsOfItsKind) {
  const std::map<CategoryType, Titles> expected{
      {CategoryType::AllSnippets, {u"plain", u"formatted", u"image", u"code", u"odd"}},
      {CategoryType::Macros, {}},
      {CategoryType::Popular, {u"code"}},
      {CategoryType::PlainText, {u"plain", u"used in trash folder"}},
      {CategoryType::Formatted, {u"formatted"}},
      {CategoryType::Image, {u"image"}},
      {CategoryType::Code, {u"code"}},
      {CategoryType::Folder, {u"formatted", u"odd"}},
      {CategoryType::SharedFolder, {}},
      {CategoryType::Trash, {u"trashed"}},
  };
  MixedLibrary library;
  for (const auto& [type, titles] : expected) {
    library.userFolder->setType(static_cast<std::int64_t>(type));
    EXPECT_EQ(library.titles({.predicate = library.userFolder->predicate()}), titles)
        << static_cast<int>(type);
    library.userFolder->countSnippets();
    EXPECT_EQ(library.userFolder->numberOfSnippets(), titles.size());
  }
  EXPECT_EQ(library.log, std::vector<std::string>(1, "Not yet implemented #dthjddd2"));
}

TEST(Folder, TakesTitleAndSymbolFromItsTypeAndAnnouncesBothWithIt) {
  TestLibrary library;
  const auto folder = library.folder(CategoryType::Folder);
  folder->setTitle(u"Letters");
  std::vector<std::string> announced;
  const auto subscription =
      folder->observeChanges([&](std::string_view name) { announced.emplace_back(name); });
  folder->setType(static_cast<std::int64_t>(CategoryType::AllSnippets));
  EXPECT_EQ(folder->title(), u"All Snippets");
  for (const auto* name : {"type", "title", "image"}) {
    EXPECT_EQ(std::ranges::count(announced, name), 1) << name;
  }
  folder->setType(static_cast<std::int64_t>(CategoryType::SharedFolder));
  EXPECT_EQ(folder->title(), u"Letters");
  EXPECT_EQ(folder->image(), "folder.badge.person.crop");
}

}  // namespace
}  // namespace quorlo
