#include "store/lookup/abbreviation_index.h"

#include "store/records/ql_snippet.h"

#include <functional>
#include <tuple>
#include <utility>

namespace quorlo {
namespace {

constexpr std::size_t kSmallestTable = 16;

std::uint32_t hashOf(std::u16string_view text) {
  const std::uint64_t whole = std::hash<std::u16string_view>()(text);
  const auto folded = static_cast<std::uint32_t>(whole ^ (whole >> 32));
  return folded == 0 ? 1 : folded;
}

bool isOlder(const QLSnippet& left, const QLSnippet& right) {
  return std::tuple(left.creationDate(), std::string_view(left.uuid())) <
         std::tuple(right.creationDate(), std::string_view(right.uuid()));
}

}  // namespace

void AbbreviationIndex::add(QLSnippet& snippet) {
  if (2 * (size_ + 1) > hashes_.size()) grow();
  const auto& abbreviation = snippet.abbreviation();
  place(hashOf(abbreviation), snippet);
  ++size_;
  if (abbreviation.size() >= countByLength_.size()) countByLength_.resize(abbreviation.size() + 1);
  ++countByLength_[abbreviation.size()];
}

void AbbreviationIndex::remove(const QLSnippet& snippet) {
  const auto& abbreviation = snippet.abbreviation();
  auto hole = home(hashOf(abbreviation));
  while (snippets_[hole] != &snippet) hole = next(hole);
  --size_;
  --countByLength_[abbreviation.size()];

  // Snippets behind the hole move up unless that would put them before the place where they are sought.
  for (auto at = next(hole); hashes_[at] != 0; at = next(at)) {
    const auto fromHome = (at - home(hashes_[at])) & mask_;
    const auto fromHole = (at - hole) & mask_;
    if (fromHome < fromHole) continue;
    hashes_[hole] = hashes_[at];
    snippets_[hole] = snippets_[at];
    hole = at;
  }
  hashes_[hole] = 0;
  snippets_[hole] = nullptr;
}

QLSnippet* AbbreviationIndex::find(std::u16string_view abbreviation, const QLSnippet* besides) const {
  if (abbreviation.size() >= countByLength_.size() || countByLength_[abbreviation.size()] == 0)
    return nullptr;
  const auto hash = hashOf(abbreviation);
  QLSnippet* oldest = nullptr;
  for (auto at = home(hash); hashes_[at] != 0; at = next(at)) {
    if (hashes_[at] != hash || snippets_[at] == besides || snippets_[at]->abbreviation() != abbreviation)
      continue;
    if (oldest == nullptr || isOlder(*snippets_[at], *oldest)) oldest = snippets_[at];
  }
  return oldest;
}

void AbbreviationIndex::place(std::uint32_t hash, QLSnippet& snippet) {
  auto at = home(hash);
  while (hashes_[at] != 0) at = next(at);
  hashes_[at] = hash;
  snippets_[at] = &snippet;
}

void AbbreviationIndex::grow() {
  const auto size = hashes_.empty() ? kSmallestTable : 2 * hashes_.size();
  const auto oldHashes = std::exchange(hashes_, std::vector<std::uint32_t>(size));
  const auto oldSnippets = std::exchange(snippets_, std::vector<QLSnippet*>(size));
  mask_ = size - 1;
  for (std::size_t i = 0; i < oldHashes.size(); ++i) {
    if (oldHashes[i] != 0) place(oldHashes[i], *oldSnippets[i]);
  }
}

}  // namespace quorlo
