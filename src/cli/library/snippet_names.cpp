#include "cli/library/snippet_names.h"

#include "cli/terminal_text.h"
#include "store/context/managed_object_context.h"
#include "store/records/ql_snippet.h"
#include "text/utf.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>

namespace quorlo {
namespace {

using Snippets = std::vector<std::shared_ptr<QLSnippet>>;

constexpr std::size_t kShortestUuidPrefix = 4;
constexpr std::size_t kShownUuid = 8;
constexpr std::size_t kMostCandidates = 20;

// The strongest first.
enum class Match { abbreviation, uuid, title, beginningOfUuid };
constexpr std::size_t kMatchCount = 4;

bool isUpperCaseOf(char upper, char letter) {
  return upper == (letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter);
}

bool uuidBegins(std::string_view uuid, std::string_view name) {
  return name.size() <= uuid.size() &&
         std::equal(name.begin(), name.end(), uuid.begin(),
                    [](char letter, char upper) { return upper == letter || isUpperCaseOf(upper, letter); });
}

std::optional<Match> match(const QLSnippet& snippet, std::u16string_view name, std::string_view utf8Name) {
  if (snippet.abbreviation() == name) return Match::abbreviation;
  const bool begins = uuidBegins(snippet.uuid(), utf8Name);
  if (begins && snippet.uuid().size() == utf8Name.size()) return Match::uuid;
  if (snippet.title() == name) return Match::title;
  if (begins && utf8Name.size() >= kShortestUuidPrefix) return Match::beginningOfUuid;
  return std::nullopt;
}

// Those that match best.
Result<Snippets> matching(const ManagedObjectContext& context, std::u16string_view name, Among among) {
  const auto utf8Name = toUtf8(name);
  const auto all =
      context.fetch<QLSnippet>({.predicate = among == Among::trash ? QLSnippet::kDeletionDate.isNotNil()
                                                                   : QLSnippet::kDeletionDate.isNil()});
  if (!all) return all.error();
  std::array<Snippets, kMatchCount> found;
  for (const auto& each : all.value()) {
    if (const auto how = match(*each, name, utf8Name)) found[static_cast<std::size_t>(*how)].push_back(each);
  }
  const auto best = std::ranges::find_if(found, [](const auto& each) { return !each.empty(); });
  return best == found.end() ? Snippets() : *best;
}

std::string quoted(std::u16string_view name) {
  return "\"" + toUtf8(name) + "\"";
}

Error ambiguous(std::u16string_view name, const Snippets& meant) {
  auto message = quoted(name) + " may be any of " + std::to_string(meant.size()) +
                 " snippets. Name one by its uuid or the beginning of it:";
  for (std::size_t i = 0; i < std::min(meant.size(), kMostCandidates); ++i) {
    message += "\n  " + inOneLine(*meant[i]);
  }
  return {message};
}

Error missing(const ManagedObjectContext& context, std::u16string_view name, Among among) {
  const auto other = among == Among::library ? Among::trash : Among::library;
  const auto elsewhere = matching(context, name, other);
  const bool isElsewhere = elsewhere && !elsewhere.value().empty();
  if (among == Among::trash) {
    return {quoted(name) + (isElsewhere ? " is not in the trash." : " is no snippet in the trash.")};
  }
  if (isElsewhere) {
    return {quoted(name) + " is in the trash. To take it back: quorlo restore " +
            elsewhere.value().front()->uuid().substr(0, kShownUuid)};
  }
  return {"There is no snippet " + quoted(name) + ". To see which there are: quorlo list"};
}

}  // namespace

Result<std::shared_ptr<QLSnippet>> snippetNamed(const ManagedObjectContext& context, std::u16string_view name,
                                                Among among) {
  if (name.empty()) return Error{"An empty name names no snippet."};
  const auto found = matching(context, name, among);
  if (!found) return found.error();
  if (found.value().empty()) return missing(context, name, among);
  if (found.value().size() > 1) return ambiguous(name, found.value());
  return found.value().front();
}

Result<Snippets> snippetsNamed(const ManagedObjectContext& context, const std::vector<std::string>& names,
                               Among among) {
  Snippets snippets;
  for (const auto& each : names) {
    const auto snippet = snippetNamed(context, toUtf16(each), among);
    if (!snippet) return snippet.error();
    if (std::ranges::find(snippets, snippet.value()) == snippets.end()) snippets.push_back(snippet.value());
  }
  return snippets;
}

std::string inOneLine(const QLSnippet& snippet) {
  auto line = snippet.uuid().substr(0, kShownUuid) + "  ";
  if (!snippet.abbreviation().empty()) line += toUtf8(snippet.abbreviation()) + "  ";
  return printable(line + toUtf8(snippet.displayTitle()), LineBreaks::shown);
}

}  // namespace quorlo
