#include "cli/library/folder_names.h"

#include "store/context/managed_object_context.h"
#include "store/library_editing.h"
#include "store/records/ql_category.h"
#include "store/uuid.h"
#include "text/case_folding.h"
#include "text/utf.h"

#include <functional>
#include <string_view>
#include <vector>

namespace quorlo {
namespace {

using Folders = std::vector<std::shared_ptr<QLCategory>>;
using Condition = std::function<bool(const QLCategory&)>;

Folders chosen(const Folders& folders, const Condition& condition) {
  Folders found;
  for (const auto& each : folders) {
    if (condition(*each)) found.push_back(each);
  }
  return found;
}

// Those that match best.
Folders matching(const Folders& folders, const std::string& name) {
  const auto title = toUtf16(name);
  const auto folded = foldCase(title);
  for (const Condition& condition :
       {Condition([&](const auto& each) { return each.title() == title; }),
        Condition([&](const auto& each) { return each.uuid() == name; }),
        Condition([&](const auto& each) { return foldCase(each.title()) == folded; })}) {
    if (auto found = chosen(folders, condition); !found.empty()) return found;
  }
  return {};
}

Error ambiguous(const std::string& name, const Folders& meant) {
  auto message =
      "\"" + name + "\" may be any of " + std::to_string(meant.size()) + " folders. Name one by its uuid:";
  for (const auto& each : meant) message += "\n  " + each->uuid() + "  " + toUtf8(each->title());
  return {message};
}

std::shared_ptr<QLCategory> newFolder(ManagedObjectContext& context, const std::string& title) {
  auto folder = addFolder(context, toUtf16(title));
  folder->setUuid(randomUuid());
  folder->setCreationDate(context.now());
  return folder;
}

}  // namespace

Result<std::shared_ptr<QLCategory>> folderNamed(const ManagedObjectContext& context,
                                                const std::string& name) {
  const auto all = context.fetch<QLCategory>({});
  if (!all) return all.error();
  const auto found = matching(all.value(), name);
  if (found.empty()) return Error{"There is no folder \"" + name + "\"."};
  if (found.size() > 1) return ambiguous(name, found);
  return found.front();
}

Result<std::shared_ptr<QLCategory>> ownFolderNamed(const ManagedObjectContext& context,
                                                   const std::string& name) {
  const auto all = context.fetch<QLCategory>({});
  if (!all) return all.error();
  const auto found = matching(chosen(all.value(), takesSnippets), name);
  if (found.size() > 1) return ambiguous(name, found);
  return found.empty() ? nullptr : found.front();
}

Result<std::shared_ptr<QLCategory>> folderToFill(ManagedObjectContext& context, const std::string& name) {
  auto found = ownFolderNamed(context, name);
  return found && !found.value() ? newFolder(context, name) : found;
}

}  // namespace quorlo
