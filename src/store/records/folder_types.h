#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace quorlo {

// The enumerations of a folder. Their raw values are stored and never renumbered; any other value is
// none of the cases.

// The section of the sidebar.
enum class SourceType { General = 0, Folders = 10, Public = 20 };
std::optional<SourceType> sourceType(std::int64_t rawValue);
// Empty for General, whose section has no title.
std::u16string sectionTitle(SourceType type);

// The kind of a folder. The built-in ones carry negative values so that they sort ahead of the user's.
enum class CategoryType {
  AllSnippets = -10,
  Macros = -9,
  Popular = -8,
  PlainText = -7,
  Formatted = -6,
  Image = -5,
  Code = -4,
  Folder = 0,
  SharedFolder = 10,
  Trash = 100,
};
std::optional<CategoryType> categoryType(std::int64_t rawValue);
// The fixed title of a built-in folder; none for Folder and SharedFolder, which the user names.
std::optional<std::u16string> builtInTitle(CategoryType type);
std::string_view symbolName(CategoryType type);

// Where the snippets of a folder may expand.
enum class ExpansionBehavior {
  AllApplications = 0,
  AllApplicationsWithExeption = 10,
  OnlyTheseApplications = 20,
  Disabled = 30,
};
std::optional<ExpansionBehavior> expansionBehavior(std::int64_t rawValue);
std::u16string title(ExpansionBehavior behavior);

// What a QLApp record is for. One application can have one record of each type.
enum class AppType {
  Excluded = 0,  // no abbreviation expands in the application
  Allowed = 1,   // named by folders and snippets in their allowed applications
  Blocked = 2,   // named by folders and snippets in their blocked applications
};

}  // namespace quorlo
