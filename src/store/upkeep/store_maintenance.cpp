#include "store/upkeep/store_maintenance.h"

#include "store/calendar_days.h"
#include "store/context/logged_fetch.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "store/records/ql_user.h"
#include "store/upkeep/built_in_folders.h"
#include "store/upkeep/duplicate_folders.h"
#include "text/utf.h"

#include <fmt/format.h>

#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

namespace quorlo {
namespace {

constexpr int kDaysInTrash = 30;

void giveSection(QLCategory& folder) {
  if (folder.type() == static_cast<std::int64_t>(CategoryType::Folder)) {
    folder.setSourceType(static_cast<std::int64_t>(SourceType::Folders));
  } else if (folder.type() == static_cast<std::int64_t>(CategoryType::SharedFolder)) {
    folder.setSourceType(static_cast<std::int64_t>(SourceType::Public));
  }
}

std::string descriptions(const std::vector<std::shared_ptr<QLUser>>& users) {
  std::string text;
  for (const auto& each : users) text += (text.empty() ? "[" : ",") + each->description();
  return text + "]";
}

// False, and nothing is changed, when a sum does not fit.
bool addStatistics(QLUser& into, const QLUser& from) {
  std::int64_t savedChars = 0;
  std::int16_t wordsPerMinute = 0;
  if (__builtin_add_overflow(into.savedChars(), from.savedChars(), &savedChars) ||
      __builtin_add_overflow(into.wordsPerMinute(), from.wordsPerMinute(), &wordsPerMinute)) {
    return false;
  }
  into.setSavedChars(savedChars);
  into.setSavedMinutes(into.savedMinutes() + from.savedMinutes());
  into.setWordsPerMinute(wordsPerMinute);
  return true;
}

}  // namespace

void purgeTrash(ManagedObjectContext& context, Date now, const TimeZone& timeZone) {
  const auto limit = calendarDaysBefore(now, kDaysInTrash, timeZone);
  const auto purged = context.purgeTrash(limit);
  if (!purged) return logError("ERROR: #tpg8Lw2; Couldn't empty the trash. " + purged.error().message);
  for (const auto& each : purged.value()) {
    logInfo("Automatically deleting trashed snippet with the name '" + userText(toUtf8(each->title())) +
            "' after 30 days.");
  }
}

void fixEmptyAbbreviations(ManagedObjectContext& context) {
  const auto snippets = loggedFetch<QLSnippet>(context, {.predicate = QLSnippet::kAbbreviation.equals(u"")},
                                               "ERROR: #fea3Xn7; Couldn't fetch Snippets. ");
  logInfo(fmt::format("Found {} snippets with wrong empty abbreviation", snippets.size()));
  for (const auto& each : snippets) {
    logInfo("Automatically fixing " + userText(toUtf8(each->title())));
    each->setAbbreviation(u"");
  }
}

void markTitlesAsCustom(ManagedObjectContext& context) {
  const auto snippets = loggedFetch<QLSnippet>(context, {.predicate = QLSnippet::kTitle.isNotNil()},
                                               "ERROR: #mtc5Rd9; Couldn't fetch Snippets. ");
  for (const auto& each : snippets) {
    if (!each->title().empty()) each->setTitleIsCustom(true);
  }
}

Status migrateFolders(ManagedObjectContext& context) {
  const auto folders = context.fetch<QLCategory>({});
  if (!folders) return folders.error();
  logInfo(fmt::format("Found {} categories to migrate", folders.value().size()));
  for (const auto& each : folders.value()) giveSection(*each);

  const auto snippets = context.fetch<QLSnippet>({.predicate = QLSnippet::kCategory.isNil()});
  if (!snippets) return snippets.error();
  logInfo(fmt::format("Found {} snippets without category", snippets.value().size()));
  const auto allSnippets = builtInFolder(context, CategoryType::AllSnippets);
  if (!allSnippets) return Error{"the library has no folder for all snippets"};
  for (const auto& each : snippets.value()) {
    logInfo(userText(toUtf8(each->title())) + " has no category. Moving to All Snippets.");
    each->setCategory(allSnippets.get());
  }
  return {};
}

void mergeDuplicateUsers(ManagedObjectContext& context) {
  const auto users = context.fetch<QLUser>({});
  if (!users) {
    logError("ERROR: #r3L3f; Couldn't fetch User. " + users.error().message);
    return;
  }
  if (users.value().empty()) context.insert<QLUser>();
  if (users.value().size() < 2) return;

  const auto list = descriptions(users.value());
  logWarning("WARNING: #32dd8fd; Multiple Users found. " + list);
  logError("ERROR: #uUf489c - found duplicated users: " + list);
  auto& kept = *users.value().front();
  for (const auto& each : std::vector(users.value().begin() + 1, users.value().end())) {
    if (addStatistics(kept, *each)) {
      context.deleteObject(*each);
    } else {
      logError("ERROR: #uof6Jt1 - the statistics" + each->description() +
               " are kept apart: together with the others they do not fit.");
    }
  }
}

void mergeDuplicateFolders(ManagedObjectContext& context) {
  std::vector<CategoryType> types(kBuiltInFolders.begin(), kBuiltInFolders.end());
  types.insert(types.end(), {CategoryType::Folder, CategoryType::SharedFolder});
  for (const auto type : types) {
    const auto folders = loggedFetch<QLCategory>(
        context,
        {.predicate = QLCategory::kType.equals(static_cast<std::int64_t>(type)),
         .sortDescriptors = {{.key = &QLCategory::kCreationDate, .ascending = false}}},
        "ERROR: #mdf2Vb6; Couldn't fetch Categories. ");
    for (const auto& group : duplicateFolders(folders)) {
      for (const auto& each : group.duplicates) {
        logInfo("Deleting duplicate folder " + userText(toUtf8(each->title())));
        mergeFolder(*each, *group.survivor);
      }
    }
  }
}

void countSnippets(ManagedObjectContext& context) {
  const auto folders = loggedFetch<QLCategory>(context, {}, "ERROR: #cns9Zp4; Couldn't fetch Categories. ");
  for (const auto& each : folders) each->countSnippets();
}

}  // namespace quorlo
