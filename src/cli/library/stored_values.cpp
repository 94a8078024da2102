#include "cli/library/stored_values.h"

#include "cli/command_session.h"
#include "cli/commands/settings_values.h"
#include "cli/library/library_access.h"
#include "cli/local_date.h"
#include "cli/terminal_text.h"
#include "platform/environment/environment.h"
#include "store/backup/backup_folder.h"
#include "store/context/managed_object_context.h"
#include "store/library_editing.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "text/utf.h"

#include <algorithm>

namespace quorlo {
namespace {

constexpr std::size_t kShownUuid = 8;

// What a line of the shell cannot hold as it stands is not offered.
void offer(std::vector<Candidate>& candidates, const std::string& text, const std::string& description) {
  if (text.empty() || printable(text, LineBreaks::shown) != text) return;
  candidates.push_back({text, printable(description, LineBreaks::shown)});
}

std::vector<Candidate> snippets(const ManagedObjectContext& library, const Predicate& condition) {
  std::vector<Candidate> candidates;
  const auto found = library.fetch<QLSnippet>({.predicate = condition});
  if (!found) return candidates;
  for (const auto& each : found.value()) {
    const auto abbreviation = toUtf8(each->abbreviation());
    offer(candidates, abbreviation.empty() ? each->uuid().substr(0, kShownUuid) : abbreviation,
          toUtf8(each->displayTitle()));
  }
  return candidates;
}

std::vector<Candidate> folders(const ManagedObjectContext& library) {
  std::vector<Candidate> candidates;
  const auto found = library.fetch<QLCategory>({});
  if (!found) return candidates;
  for (const auto& each : found.value()) {
    if (takesSnippets(*each)) offer(candidates, toUtf8(each->title()), "");
  }
  return candidates;
}

// Another form of the date that needs no quotation marks.
void offerBackups(std::vector<Candidate>& candidates, const Environment& environment) {
  for (const auto& each : BackupFolder::of(environment.dataDirectory()).backups()) {
    auto date = localDateAndTime(each.date);
    std::ranges::replace(date, ' ', 'T');
    offer(candidates, date, "a backup of the whole library");
  }
}

std::vector<Candidate> settings() {
  std::vector<Candidate> candidates;
  for (const auto each : settingsByKey()) {
    offer(candidates, std::string(describe(each).key), std::string(describe(each).meaning));
  }
  return candidates;
}

}  // namespace

std::vector<Candidate> storedValues(CommandSession& session, std::string_view type) {
  if (type == "SETTING") return settings();
  if ((type != "SNIPPET" && type != "TRASHED" && type != "FOLDER") ||
      libraryIsMissing(session.environment())) {
    return {};
  }
  const auto library = openLibraryToRead(session.environment());
  if (!library) return {};
  if (type == "FOLDER") return folders(*library.value());
  if (type == "SNIPPET") return snippets(*library.value(), QLSnippet::kDeletionDate.isNil());
  auto candidates = snippets(*library.value(), QLSnippet::kDeletionDate.isNotNil());
  offerBackups(candidates, session.environment());
  return candidates;
}

}  // namespace quorlo
