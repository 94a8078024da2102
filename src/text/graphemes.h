#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

// User-perceived characters: extended grapheme clusters of Unicode Standard Annex #29, as ICU finds
// them. CR LF is one cluster; a lone surrogate is one of its own. Offsets are UTF-16 units; texts are
// shorter than 2^31 units. Any thread.

std::size_t graphemeCount(std::u16string_view text);

// Where the last cluster begins; 0 for an empty text.
std::size_t lastGraphemeStart(std::u16string_view text);

// Where each cluster begins, ascending; empty for an empty text. The n-character prefix of a text ends
// at element n.
std::vector<std::size_t> graphemeStarts(std::u16string_view text);

// The characters typed so far, edited at the end only, as a keyboard monitor keeps them. Editing and
// counting cost the same whatever the length: the start of every cluster is kept and an append looks
// at no more than the last cluster, the only one that new text can extend. Not thread-safe.
class GraphemeBuffer {
 public:
  // Joins the last cluster where the standard says so (a combining mark, the second half of a flag).
  void append(std::u16string_view text);

  // Removes the last cluster; does nothing when the buffer is empty.
  void removeLast();

  void clear();

  bool empty() const { return text_.empty(); }
  std::size_t graphemeCount() const { return starts_.size(); }

  // Valid until the next change.
  std::u16string_view text() const { return text_; }

 private:
  std::u16string text_;
  std::vector<std::size_t> starts_;  // of each cluster
};

}  // namespace quorlo
