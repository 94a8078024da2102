#include "store/records/folder_types.h"

#include "base/localized.h"

namespace quorlo {

std::optional<SourceType> sourceType(std::int64_t rawValue) {
  if (rawValue < 0 || rawValue > 20 || rawValue % 10 != 0) return std::nullopt;
  return static_cast<SourceType>(rawValue);
}

std::u16string sectionTitle(SourceType type) {
  switch (type) {
    case SourceType::General:
      return {};
    case SourceType::Folders:
      // Translators: Name of the Folders section
      return localized(u"Folders");
    case SourceType::Public:
      // Translators: Name of the Public section
      return localized(u"Public");
  }
  return {};
}

std::optional<CategoryType> categoryType(std::int64_t rawValue) {
  const bool isBuiltIn = rawValue >= -10 && rawValue <= -4;
  if (!isBuiltIn && rawValue != 0 && rawValue != 10 && rawValue != 100) return std::nullopt;
  return static_cast<CategoryType>(rawValue);
}

std::optional<std::u16string> builtInTitle(CategoryType type) {
  switch (type) {
    case CategoryType::AllSnippets:
      return localized(u"All Snippets");
    case CategoryType::Macros:
      return localized(u"Macros");
    case CategoryType::Popular:
      // Translators: Title of category with the most popular snippets
      return localized(u"Popular");
    case CategoryType::PlainText:
      return localized(u"Plain Text");
    case CategoryType::Formatted:
      return localized(u"Formatted");
    case CategoryType::Image:
      return localized(u"Images");
    case CategoryType::Code:
      return localized(u"Code");
    case CategoryType::Trash:
      return localized(u"Trash");
    case CategoryType::Folder:
    case CategoryType::SharedFolder:
      return std::nullopt;
  }
  return std::nullopt;
}

std::string_view symbolName(CategoryType type) {
  switch (type) {
    case CategoryType::AllSnippets:
      return "tray.full";
    case CategoryType::Macros:
      return "command";
    case CategoryType::Popular:
      return "star";
    case CategoryType::PlainText:
      return "text.justify.left";
    case CategoryType::Formatted:
      return "paintbrush";
    case CategoryType::Image:
      return "photo";
    case CategoryType::Code:
      return "chevron.left.forwardslash.chevron.right";
    case CategoryType::Folder:
      return "folder";
    case CategoryType::SharedFolder:
      return "folder.badge.person.crop";
    case CategoryType::Trash:
      return "trash";
  }
  return {};
}

std::optional<ExpansionBehavior> expansionBehavior(std::int64_t rawValue) {
  if (rawValue < 0 || rawValue > 30 || rawValue % 10 != 0) return std::nullopt;
  return static_cast<ExpansionBehavior>(rawValue);
}

std::u16string title(ExpansionBehavior behavior) {
  switch (behavior) {
    case ExpansionBehavior::AllApplications:
      return localized(u"All Applications");
    case ExpansionBehavior::AllApplicationsWithExeption:
      return localized(u"All Applications, except");
    case ExpansionBehavior::OnlyTheseApplications:
      return localized(u"Only these Applications");
    case ExpansionBehavior::Disabled:
      return localized(u"No Applications (disable)");
  }
  return {};
}

}  // namespace quorlo
