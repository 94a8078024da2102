#include "cli/command_session.h"
#include "cli/commands/commands.h"
#include "cli/definition/command_parser.h"
#include "cli/library/snippet_json.h"
#include "cli/library/snippet_names.h"
#include "store/context/managed_object_context.h"
#include "store/library_editing.h"
#include "store/records/ql_category.h"
#include "store/records/ql_snippet.h"
#include "store/records/ql_user.h"
#include "text/utf.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace quorlo {
namespace {

constexpr std::size_t kMostUsed = 5;

struct Statistics {
  std::size_t snippets = 0;
  std::size_t withAbbreviation = 0;
  std::size_t inTrash = 0;
  std::size_t folders = 0;
  std::int64_t uses = 0;
  std::vector<std::shared_ptr<QLSnippet>> mostUsed;
  std::shared_ptr<QLUser> user;  // null where nothing was expanded yet
};

void count(Statistics& statistics, const QLSnippet& snippet) {
  if (snippet.deletionDate()) {
    ++statistics.inTrash;
    return;
  }
  ++statistics.snippets;
  if (!snippet.abbreviation().empty()) ++statistics.withAbbreviation;
  statistics.uses += snippet.useCount();
}

Result<Statistics> gather(const ManagedObjectContext& library) {
  Statistics statistics;
  const auto snippets = library.fetch<QLSnippet>({});
  if (!snippets) return snippets.error();
  for (const auto& each : snippets.value()) count(statistics, *each);

  const auto folders = library.fetch<QLCategory>({});
  if (!folders) return folders.error();
  statistics.folders = static_cast<std::size_t>(
      std::ranges::count_if(folders.value(), [](const auto& each) { return takesSnippets(*each); }));

  const auto mostUsed = library.fetch<QLSnippet>(
      {.predicate = Predicate::all({QLSnippet::kDeletionDate.isNil(), QLSnippet::kUseCount.greaterThan(0)}),
       .sortDescriptors = {{&QLSnippet::kUseCount, false}},
       .fetchLimit = kMostUsed});
  if (!mostUsed) return mostUsed.error();
  statistics.mostUsed = mostUsed.value();

  const auto users = library.fetch<QLUser>({.fetchLimit = 1});
  if (!users) return users.error();
  if (!users.value().empty()) statistics.user = users.value().front();
  return statistics;
}

nlohmann::ordered_json toJson(const Statistics& statistics) {
  nlohmann::ordered_json document{{"snippets", statistics.snippets},
                                  {"withAbbreviation", statistics.withAbbreviation},
                                  {"inTrash", statistics.inTrash},
                                  {"folders", statistics.folders},
                                  {"uses", statistics.uses},
                                  {"savedChars", statistics.user ? statistics.user->savedChars() : 0},
                                  {"savedMinutes", statistics.user ? statistics.user->savedMinutes() : 0.0}};
  document["mostUsed"] = snippetsJson(statistics.mostUsed)["snippets"];
  return document;
}

std::string inWords(const Statistics& statistics) {
  auto text = fmt::format(
      "Snippets           {}\nWith abbreviation  {}\nIn the trash       {}\nFolders            {}\n",
      statistics.snippets, statistics.withAbbreviation, statistics.inTrash, statistics.folders);
  text += fmt::format("Uses               {}\n", statistics.uses);
  if (statistics.user) {
    text += fmt::format("Saved characters   {}\n\n{}\n", statistics.user->savedChars(),
                        toUtf8(statistics.user->statisticsText()));
  }
  if (!statistics.mostUsed.empty()) text += "\nMost used:\n";
  for (const auto& each : statistics.mostUsed) {
    text += fmt::format("{:>6}  {}\n", each->useCount(), inOneLine(*each));
  }
  return text;
}

Result<ExitStatus> showStatistics(CommandSession& session) {
  const auto library = session.openLibrary();
  if (!library) return library.error();
  const auto statistics = gather(*library.value());
  if (!statistics) return statistics.error();
  if (session.json()) {
    session.printJson(toJson(statistics.value()));
  } else {
    session.out().write(inWords(statistics.value()));
  }
  return ExitStatus::done;
}

}  // namespace

void addStatsCommand(CommandParser& parser) {
  parser.add("stats", "Say what is in the library and what it has saved",
             [](CommandSession& session) { return showStatistics(session); });
}

}  // namespace quorlo
