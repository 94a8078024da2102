#include "store/lookup/search_index.h"

#include "store/records/ql_snippet.h"
#include "text/block_search.h"
#include "text/case_folding.h"
#include "text/utf.h"

#include <utility>

namespace quorlo {
namespace {

// Stands between texts, so that nothing is found across them: no part of UTF-8.
constexpr char kSeparator = '\xFF';

}  // namespace

void SearchIndex::build(const std::vector<QLSnippet*>& snippets) {
  isBuilt_ = true;
  entries_.reserve(snippets.size());
  for (auto* each : snippets) append(*each);
  block_.shrink_to_fit();
}

void SearchIndex::append(QLSnippet& snippet) {
  for (const auto* text : {&snippet.title_, &snippet.abbreviation_, &snippet.plainText_}) {
    block_ += toUtf8(foldCase(*text));
    block_ += kSeparator;
  }
  entries_.push_back({&snippet, block_.size()});
  snippet.searchEntry_ = entries_.size();
}

void SearchIndex::noteChange(QLSnippet& snippet) {
  if (!isBuilt_) return;
  remove(snippet);
  if (std::exchange(snippet.isToBeReadAgain_, true)) return;
  changed_.push_back(std::static_pointer_cast<QLSnippet>(snippet.shared_from_this()));
}

void SearchIndex::remove(QLSnippet& snippet) {
  const auto entry = std::exchange(snippet.searchEntry_, 0);
  if (entry == 0) return;
  auto& dead = entries_[entry - 1];
  dead.snippet = nullptr;
  deadBytes_ += dead.end - (entry == 1 ? 0 : entries_[entry - 2].end);
}

void SearchIndex::readAgain() {
  if (deadBytes_ > block_.size() / 2) dropDeadTexts();
  for (const auto& each : std::exchange(changed_, {})) {
    const auto snippet = each.lock();
    if (!snippet) continue;
    snippet->isToBeReadAgain_ = false;
    if (!snippet->isDeleted()) append(*snippet);
  }
}

void SearchIndex::dropDeadTexts() {
  std::string block;
  std::vector<Entry> entries;
  std::size_t begin = 0;
  for (const auto& [snippet, end] : entries_) {
    if (snippet != nullptr) {
      block.append(block_, begin, end - begin);
      entries.push_back({snippet, block.size()});
      snippet->searchEntry_ = entries.size();
    }
    begin = end;
  }
  block_ = std::move(block);
  entries_ = std::move(entries);
  deadBytes_ = 0;
}

std::vector<QLSnippet*> SearchIndex::candidates(std::u16string_view foldedNeedle) {
  readAgain();
  const auto needle = toUtf8(foldedNeedle);
  const std::string_view block = block_;
  std::vector<QLSnippet*> found;
  auto entry = entries_.begin();
  for (auto place = findInBlocks(block, std::string_view(needle)); place != block.npos;
       place = findInBlocks(block, std::string_view(needle), entry->end)) {
    while (entry->end <= place) ++entry;
    if (entry->snippet != nullptr) found.push_back(entry->snippet);
  }
  return found;
}

}  // namespace quorlo
