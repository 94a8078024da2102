#include "store/upkeep/built_in_folders.h"

#include "store/context/logged_fetch.h"
#include "store/records/ql_category.h"

#include <cstdint>
#include <string>

namespace quorlo {

std::string_view builtInFolderUuid(CategoryType type) {
  switch (type) {
    case CategoryType::AllSnippets:
      return "9507C07C-3425-4008-B2C5-54CC58633293";
    case CategoryType::Macros:
      return "5B5405B0-EB97-432D-A770-2C34D3436CC1";
    case CategoryType::Popular:
      return "2E0E9394-5512-4D6D-BA99-9BB57D0FE664";
    case CategoryType::PlainText:
      return "8B273224-D3B3-4434-BA37-8DFC04D75E18";
    case CategoryType::Formatted:
      return "FA90C9FB-00B5-407E-A420-84B16134555D";
    case CategoryType::Image:
      return "1DD8CE3F-1205-4AB3-9C99-7EB51DDC07F3";
    case CategoryType::Code:
      return "9ECF6156-62EE-4D29-9588-3A9D3CDC8258";
    case CategoryType::Trash:
      return "6CF2FF1C-A3E2-4A0F-AB87-A924F7B5E3A0";
    case CategoryType::Folder:
    case CategoryType::SharedFolder:
      break;
  }
  return {};
}

std::shared_ptr<QLCategory> builtInFolder(const ManagedObjectContext& context, CategoryType type) {
  return loggedFetchOfFirst<QLCategory>(
      context,
      {.predicate =
           Predicate::all({QLCategory::kSourceType.equals(static_cast<std::int64_t>(SourceType::General)),
                           QLCategory::kType.equals(static_cast<std::int64_t>(type))}),
       .sortDescriptors = {{&QLCategory::kCreationDate}}},
      "ERROR: #2b54; Couldn't fetch Category. ");
}

void createBuiltInFolders(ManagedObjectContext& context) {
  for (const auto type : kBuiltInFolders) {
    if (builtInFolder(context, type)) continue;
    const auto folder = std::make_shared<QLCategory>();
    folder->setUuid(std::string(builtInFolderUuid(type)));
    folder->setType(static_cast<std::int64_t>(type));
    folder->setSourceType(static_cast<std::int64_t>(SourceType::General));
    context.insert(folder);
  }
}

}  // namespace quorlo
