#include "text/case_folding.h"

#include "text/block_search.h"

#include <unicode/normalizer2.h>
#include <unicode/unistr.h>
#include <unicode/ustring.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace quorlo {
namespace {

// Work goes in blocks of a fixed size, whose loops the compiler turns into vector instructions.
constexpr std::size_t kBlock = 32;

// One code unit folds to no more than this many.
constexpr std::size_t kMaxFoldedUnits = 3;

// Below this no two code points compose and each is its own canonical form.
constexpr char16_t kFirstCombining = 0x300;

constexpr bool isAscii(char16_t unit) {
  return unit < 0x80;
}

constexpr char16_t foldAscii(char16_t unit) {
  return static_cast<char16_t>(unit + (unit >= u'A' && unit <= u'Z' ? 0x20 : 0));
}

std::size_t asciiPrefixLength(std::u16string_view text) {
  std::size_t i = 0;
  for (; i + kBlock <= text.size(); i += kBlock) {
    char16_t all = 0;
    for (std::size_t k = 0; k < kBlock; ++k) all = static_cast<char16_t>(all | text[i + k]);
    if (!isAscii(all)) break;
  }
  while (i < text.size() && isAscii(text[i])) ++i;
  return i;
}

void appendFoldedAscii(std::u16string& out, std::u16string_view text) {
  const auto start = out.size();
  out.resize(start + text.size());
  auto* const target = out.data() + start;
  for (std::size_t i = 0; i < text.size(); ++i) target[i] = foldAscii(text[i]);
}

// Returns whether what was appended may have to be normalized.
bool appendFolded(std::u16string& out, std::u16string_view text) {
  const auto start = out.size();
  const auto capacity = text.size() * kMaxFoldedUnits;
  out.resize(start + capacity);
  UErrorCode status = U_ZERO_ERROR;
  const auto written = u_strFoldCase(out.data() + start, static_cast<std::int32_t>(capacity), text.data(),
                                     static_cast<std::int32_t>(text.size()), U_FOLD_CASE_DEFAULT, &status);
  out.resize(start + static_cast<std::size_t>(written));
  return std::any_of(out.data() + start, out.data() + out.size(),
                     [](char16_t unit) { return unit >= kFirstCombining; });
}

void normalize(std::u16string& text) {
  UErrorCode status = U_ZERO_ERROR;
  const auto* const nfc = icu::Normalizer2::getNFCInstance(status);
  const icu::UnicodeString alias(false, text.data(), static_cast<std::int32_t>(text.size()));
  if (U_FAILURE(status) || nfc->isNormalized(alias, status)) return;
  const auto normalized = nfc->normalize(alias, status);
  if (U_FAILURE(status)) return;  // out of memory; the folded text still matches itself
  text.assign(normalized.getBuffer(), static_cast<std::size_t>(normalized.length()));
}

// Code points fold one by one, so the stretches beside ASCII can be given to ICU alone.
void foldInto(std::u16string& out, std::u16string_view text) {
  out.clear();
  bool mayCombine = false;
  while (!text.empty()) {
    const auto ascii = asciiPrefixLength(text);
    appendFoldedAscii(out, text.substr(0, ascii));
    text.remove_prefix(ascii);
    const auto other =
        static_cast<std::size_t>(std::find_if(text.begin(), text.end(), isAscii) - text.begin());
    if (other > 0 && appendFolded(out, text.substr(0, other))) mayCombine = true;
    text.remove_prefix(other);
  }
  if (mayCombine) normalize(out);
}

bool contains(std::u16string_view haystack, std::u16string_view needle) {
  return !needle.empty() && findInBlocks(haystack, needle) != haystack.npos;
}

}  // namespace

std::u16string foldCase(std::u16string_view text) {
  std::u16string folded;
  foldInto(folded, text);
  return folded;
}

bool containsFolded(std::u16string_view haystack, std::u16string_view needle) {
  return FoldedNeedle(needle).isIn(haystack);
}

FoldedNeedle::FoldedNeedle(std::u16string_view needle) : folded_(foldCase(needle)) {}

bool FoldedNeedle::isIn(std::u16string_view haystack) const {
  thread_local std::u16string scratch;
  foldInto(scratch, haystack);
  return contains(scratch, folded_);
}

bool FoldedNeedle::isInFolded(std::u16string_view foldedHaystack) const {
  return contains(foldedHaystack, folded_);
}

}  // namespace quorlo
