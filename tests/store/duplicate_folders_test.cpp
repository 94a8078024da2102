#include "store/duplicate_folders.h"

#include "test_library.h"

#include <gtest/gtest.h>

namespace quorlo {
namespace {

std::shared_ptr<QLCategory> folderOfDay(TestLibrary& library, int day, CategoryType type, std::string uuid,
                                        SourceType source = SourceType::Folders) {
  const auto folder = library.folder(type, source);
  folder->setUuid(std::move(uuid));
  folder->setCreationDate(Date(std::chrono::days(day)));
  return folder;
}

TEST(DuplicateFolders, AreBuiltInOnesOfOneSectionAndTheUsersOwnOfOneUuid) {
  TestLibrary library;
  const auto young = folderOfDay(library, 2, CategoryType::AllSnippets, "x");
  const auto old = folderOfDay(library, 1, CategoryType::AllSnippets, "y");
  folderOfDay(library, 1, CategoryType::AllSnippets, "x", SourceType::Public);
  folderOfDay(library, 1, CategoryType::Trash, "x");
  const auto mine = folderOfDay(library, 5, CategoryType::Folder, "x");
  const auto mineElsewhere = folderOfDay(library, 6, CategoryType::Folder, "x");
  folderOfDay(library, 5, CategoryType::Folder, "z");
  folderOfDay(library, 5, CategoryType::SharedFolder, "x");
  mine->setTitle(u"Work");
  mineElsewhere->setTitle(u"Office");

  auto fetched = library.context.fetch<QLCategory>({}).value();
  for (int order = 0; order < 2; ++order) {
    const auto found = duplicateFolders(fetched);
    ASSERT_EQ(found.size(), 2U);
    EXPECT_EQ(found[0].survivor, old);
    EXPECT_EQ(found[0].duplicates, std::vector{young});
    EXPECT_EQ(found[1].survivor, mine);
    EXPECT_EQ(found[1].duplicates, std::vector{mineElsewhere});
    std::ranges::reverse(fetched);
  }
}

TEST(DuplicateFolders, OfOneMomentAreToldApartAlikeOnEveryDevice) {
  TestLibrary here;
  TestLibrary there;
  folderOfDay(here, 1, CategoryType::Trash, "a");
  folderOfDay(here, 1, CategoryType::Trash, "b");
  folderOfDay(there, 1, CategoryType::Trash, "b");
  folderOfDay(there, 1, CategoryType::Trash, "a");
  for (auto* each : {&here, &there}) {
    const auto found = duplicateFolders(each->context.fetch<QLCategory>({}).value());
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].survivor->uuid(), "a");
  }
}

}  // namespace
}  // namespace quorlo
