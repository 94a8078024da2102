#include "text/graphemes.h"

#include "base/fatal.h"

#include <unicode/localpointer.h>
#include <unicode/ubrk.h>
#include <unicode/utf16.h>
#include <unicode/utypes.h>

#include <algorithm>
#include <cstdint>

namespace quorlo {
namespace {

// Of a cluster longer than this an append looks only at its ends.
constexpr std::size_t kLongCluster = 64;

// Between two of these every position is a boundary, and no rule looks further back (GB999).
constexpr bool isPrintableAscii(char16_t unit) {
  return unit >= 0x20 && unit < 0x7F;
}

bool isPrintableAscii(std::u16string_view text) {
  return std::all_of(text.begin(), text.end(), [](char16_t unit) { return isPrintableAscii(unit); });
}

// The rules are part of ICU's own data library, without which the program does not load.
void require(UErrorCode status) {
  if (U_SUCCESS(status)) return;
  fatal("ERROR: ICU cannot find character boundaries: " + std::string(u_errorName(status)));
}

// A break iterator is costly to make and cheap to set to another text.
UBreakIterator* iteratorOver(std::u16string_view text) {
  thread_local const auto iterator = [] {
    UErrorCode status = U_ZERO_ERROR;
    icu::LocalUBreakIteratorPointer made(ubrk_open(UBRK_CHARACTER, "", nullptr, 0, &status));
    require(status);
    return made;
  }();
  UErrorCode status = U_ZERO_ERROR;
  ubrk_setText(iterator.getAlias(), text.data(), static_cast<std::int32_t>(text.size()), &status);
  require(status);
  return iterator.getAlias();
}

// Calls `visit(start)` with each cluster's start, ascending.
template <class Visitor>
void visitStarts(std::u16string_view text, Visitor visit) {
  if (text.empty()) return;
  auto* const iterator = iteratorOver(text);
  const auto size = static_cast<std::int32_t>(text.size());
  for (auto start = ubrk_first(iterator); start != UBRK_DONE && start < size; start = ubrk_next(iterator)) {
    visit(static_cast<std::size_t>(start));
  }
}

// A short text on whose end the boundaries behind `cluster` depend just as on the cluster itself: apart
// from the last code point they ask only how the cluster began (a picture whose joiner waits for the
// next one; GB11).
std::u16string endsOf(std::u16string_view cluster) {
  std::size_t head = 0;
  U16_FWD_1(cluster, head, cluster.size());
  auto tail = cluster.size();
  U16_BACK_1(cluster, 0, tail);
  // A lone surrogate at the end waits for its other half: keep the code point before it, too.
  if (U16_IS_LEAD(cluster.back())) U16_BACK_1(cluster, 0, tail);
  std::u16string ends(cluster.substr(0, head));
  return ends.append(cluster.substr(tail));
}

}  // namespace

std::size_t graphemeCount(std::u16string_view text) {
  if (isPrintableAscii(text)) return text.size();
  std::size_t count = 0;
  visitStarts(text, [&](std::size_t) { ++count; });
  return count;
}

std::size_t lastGraphemeStart(std::u16string_view text) {
  if (text.empty()) return 0;
  const auto start = ubrk_preceding(iteratorOver(text), static_cast<std::int32_t>(text.size()));
  return start == UBRK_DONE ? 0 : static_cast<std::size_t>(start);
}

std::vector<std::size_t> graphemeStarts(std::u16string_view text) {
  std::vector<std::size_t> starts;
  visitStarts(text, [&](std::size_t start) { starts.push_back(start); });
  return starts;
}

void GraphemeBuffer::append(std::u16string_view text) {
  if (text.empty()) return;
  const auto oldSize = text_.size();
  if (isPrintableAscii(text) && (text_.empty() || isPrintableAscii(text_.back()))) {
    text_ += text;
    for (auto start = oldSize; start < text_.size(); ++start) starts_.push_back(start);
    return;
  }

  // Two halves of a pair that come one after the other make a character that may join what stands
  // before them, so the last true boundary is one cluster further back.
  if (starts_.size() > 1 && U16_IS_LEAD(text_.back()) && U16_IS_TRAIL(text.front())) starts_.pop_back();

  const auto clusterStart = starts_.empty() ? 0 : starts_.back();
  const auto cluster = std::u16string_view(text_).substr(clusterStart);
  auto context = cluster.size() > kLongCluster ? endsOf(cluster) : std::u16string(cluster);
  const auto contextSize = context.size();
  context += text;

  text_ += text;
  if (starts_.empty()) starts_.push_back(0);
  visitStarts(context, [&](std::size_t start) {
    // What is cut out of a long cluster leaves a seam that is no boundary.
    const bool atLoneLead = contextSize > 0 && start + 1 == contextSize && U16_IS_LEAD(context[start]);
    if (start >= std::max<std::size_t>(contextSize, 1) || (start > 0 && atLoneLead)) {
      starts_.push_back(start - contextSize + oldSize);
    }
  });
}

void GraphemeBuffer::removeLast() {
  if (starts_.empty()) return;
  text_.resize(starts_.back());
  starts_.pop_back();
}

void GraphemeBuffer::clear() {
  text_.clear();
  starts_.clear();
}

}  // namespace quorlo
