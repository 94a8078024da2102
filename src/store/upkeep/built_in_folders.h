#pragma once

#include "store/records/folder_types.h"

#include <array>
#include <memory>
#include <string_view>

namespace quorlo {

class ManagedObjectContext;
class QLCategory;

// In the order in which they are listed.
inline constexpr std::array kBuiltInFolders{
    CategoryType::AllSnippets, CategoryType::Macros, CategoryType::Popular, CategoryType::PlainText,
    CategoryType::Formatted,   CategoryType::Image,  CategoryType::Code,    CategoryType::Trash};

// The uuid that a built-in folder is made with, the same on every device; empty for other types.
std::string_view builtInFolderUuid(CategoryType type);

// The oldest of the type; null when there is none. A failed fetch is logged.
std::shared_ptr<QLCategory> builtInFolder(const ManagedObjectContext& context, CategoryType type);

// Makes those that the library lacks.
void createBuiltInFolders(ManagedObjectContext& context);

}  // namespace quorlo
