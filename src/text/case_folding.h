#pragma once

#include <string>
#include <string_view>

namespace quorlo {

// Caseless matching as the predicates' CONTAINS[c] does it: Unicode default full case folding ("STRASSE"
// matches "straße"; no Turkish dotless i), sensitive to diacritics. Canonically equivalent spellings
// match ("é" as one code point or as two). Any thread.

// The form in which two texts that match caselessly are equal: folded, then NFC.
std::u16string foldCase(std::u16string_view text);

// An empty needle is contained in no text.
bool containsFolded(std::u16string_view haystack, std::u16string_view needle);

// A needle folded once, for a search through many texts.
class FoldedNeedle {
 public:
  explicit FoldedNeedle(std::u16string_view needle);

  bool isIn(std::u16string_view haystack) const;

  // For haystacks that are kept in the form of foldCase; outside ASCII many times faster than isIn.
  bool isInFolded(std::u16string_view foldedHaystack) const;

  const std::u16string& folded() const { return folded_; }

 private:
  std::u16string folded_;
};

}  // namespace quorlo
