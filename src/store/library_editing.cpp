#include "store/library_editing.h"

#include "store/context/managed_object_context.h"
#include "store/records/folder_types.h"
#include "store/records/ql_app.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace quorlo {
namespace {

std::optional<SnippetType> collectedType(const QLCategory& folder) {
  switch (categoryType(folder.type()).value_or(CategoryType::Folder)) {
    case CategoryType::PlainText:
      return SnippetType::plainText;
    case CategoryType::Formatted:
      return SnippetType::formatted;
    case CategoryType::Image:
      return SnippetType::image;
    case CategoryType::Code:
      return SnippetType::code;
    default:
      return std::nullopt;
  }
}

bool isTrash(const QLCategory& folder) {
  return folder.type() == static_cast<std::int64_t>(CategoryType::Trash);
}

}  // namespace

bool takesSnippets(const QLCategory& folder) {
  return folder.type() == static_cast<std::int64_t>(CategoryType::Folder);
}

std::shared_ptr<QLSnippet> addSnippet(ManagedObjectContext& context, QLCategory* folder,
                                      std::int64_t format) {
  auto snippet = context.insert<QLSnippet>();
  if (folder != nullptr) {
    if (const auto type = collectedType(*folder)) format = static_cast<std::int64_t>(*type);
    if (takesSnippets(*folder)) snippet->setCategory(folder);
  }
  snippet->setFormatted(format);
  return snippet;
}

std::shared_ptr<QLSnippet> duplicate(const QLSnippet& snippet) {
  auto copy = snippet.managedObjectContext()->insert<QLSnippet>();
  copy->setTitle(snippet.title());
  copy->setTitleIsCustom(snippet.titleIsCustom());
  copy->setText(snippet.text());
  copy->setFormatted(snippet.formatted());
  copy->setCategory(snippet.category().get());
  for (auto* each : snippet.allowedApps()) copy->addAllowedApp(*each);
  for (auto* each : snippet.blockedSnippets()) copy->addBlockedSnippet(*each);
  return copy;
}

std::string folderOfChoice(const QLSnippet& snippet) {
  const auto folder = snippet.category();
  const auto isChosen = folder && folder->type() != static_cast<std::int64_t>(CategoryType::AllSnippets);
  return isChosen ? folder->uuid() : std::string();
}

bool isDestinationOfMove(const QLCategory& folder) {
  return takesSnippets(folder) || isTrash(folder);
}

void moveSnippets(const std::vector<std::shared_ptr<QLSnippet>>& snippets, QLCategory& folder) {
  for (const auto& each : snippets) {
    if (isTrash(folder)) {
      if (!each->deletionDate()) each->moveToTrash();
    } else {
      each->restoreFromTrash();
      each->setCategory(&folder);
    }
  }
}

std::shared_ptr<QLCategory> addFolder(ManagedObjectContext& context, std::u16string title) {
  std::int64_t last = 0;
  if (const auto folders = context.fetch<QLCategory>({})) {
    for (const auto& each : folders.value()) last = std::max(last, each->sort());
  }
  auto folder = context.insert<QLCategory>();
  folder->setTitle(std::move(title));
  folder->setSort(last + 1);
  return folder;
}

}  // namespace quorlo
