#include "cli/library/snippet_query.h"

#include "base/date.h"
#include "cli/definition/command_definition.h"
#include "store/records/ql_snippet.h"
#include "text/case_folding.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <compare>
#include <cstdint>
#include <string_view>
#include <utility>

namespace quorlo {
namespace {

struct SortKey {
  std::int64_t rank = 0;
  std::u16string text = {};

  auto operator<=>(const SortKey&) const = default;
};

std::int64_t newestFirst(const std::optional<Date>& date) {
  return date ? -std::chrono::floor<std::chrono::microseconds>(date->time_since_epoch()).count() : 0;
}

using KeyOf = SortKey (*)(const QLSnippet&);

constexpr std::array<std::pair<std::string_view, KeyOf>, 6> kOrders{{
    {"title",
     [](const QLSnippet& each) {
       return SortKey{0, foldCase(each.displayTitle())};
     }},
    {"abbreviation",
     [](const QLSnippet& each) {
       return SortKey{each.abbreviation().empty(), foldCase(each.abbreviation())};
     }},
    {"created", [](const QLSnippet& each) { return SortKey{newestFirst(each.creationDate())}; }},
    {"modified", [](const QLSnippet& each) { return SortKey{newestFirst(each.modifiedDate())}; }},
    {"used", [](const QLSnippet& each) { return SortKey{-each.useCount()}; }},
    {"type", [](const QLSnippet& each) { return SortKey{each.formatted()}; }},
}};

KeyOf keyNamed(std::string_view name) {
  return std::ranges::find(kOrders, name, &std::pair<std::string_view, KeyOf>::first)->second;
}

}  // namespace

void addQuery(CommandDefinition& command, SnippetQuery& query) {
  command.addText("-f,--folder", query.folder, "Only the snippets of this folder, by name or uuid", "FOLDER");
  std::vector<std::string_view> orders;
  for (const auto& [name, key] : kOrders) orders.push_back(name);
  command.addChoice("--sort", query.sort, orders, "The order, by title without this option");
  command.addFlag("--reverse", query.isReversed, "The other way round");
}

void sortSnippets(std::vector<std::shared_ptr<QLSnippet>>& snippets, const SnippetQuery& query) {
  const auto keyOf = keyNamed(query.sort);
  std::vector<std::pair<SortKey, std::shared_ptr<QLSnippet>>> keyed;
  keyed.reserve(snippets.size());
  for (auto& each : snippets) keyed.emplace_back(keyOf(*each), std::move(each));
  std::ranges::stable_sort(keyed, {}, [](const auto& each) -> const SortKey& { return each.first; });
  if (query.isReversed) std::ranges::reverse(keyed);
  std::ranges::transform(keyed, snippets.begin(), [](auto& each) { return std::move(each.second); });
}

}  // namespace quorlo
