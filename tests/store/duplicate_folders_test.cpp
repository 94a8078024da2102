#include "store/upkeep/duplicate_folders.h"

#include "test_library.h"

#include <gtest/gtest.h>

#include <set>

namespace quorlo {
namespace {

TEST(DuplicateFolders, AreBuiltInOnesOfOneSectionAndTheUsersOwnOfOneUuid) {
  TestLibrary library;
  const auto add = [&library](const char* uuid, int day, CategoryType type,
                              SourceType source = SourceType::Folders) {
    const auto folder = library.folder(type, source);
    folder->setUuid(uuid);
    folder->setCreationDate(Date(std::chrono::days(day)));
  };
  add("young", 2, CategoryType::AllSnippets);
  add("old", 1, CategoryType::AllSnippets);
  add("elsewhere", 1, CategoryType::AllSnippets, SourceType::Public);
  add("b", 1, CategoryType::Trash);  // of one moment: told apart alike on every device
  add("a", 1, CategoryType::Trash);
  add("mine", 5, CategoryType::Folder);
  add("mine", 6, CategoryType::Folder, SourceType::General);
  add("another", 5, CategoryType::Folder);
  add("mine", 5, CategoryType::SharedFolder);

  auto folders = library.context.fetch<QLCategory>({}).value();
  for (int order = 0; order < 2; ++order) {
    std::set<std::string> found;
    for (const auto& [survivor, duplicates] : duplicateFolders(folders)) {
      ASSERT_EQ(duplicates.size(), 1U);
      EXPECT_LE(survivor->creationDate(), duplicates[0]->creationDate());
      found.insert(survivor->uuid() + " < " + duplicates[0]->uuid());
    }
    EXPECT_EQ(found, (std::set<std::string>{"old < young", "a < b", "mine < mine"}));
    std::ranges::reverse(folders);
  }
}

}  // namespace
}  // namespace quorlo
