#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

enum class ColumnRole { title, abbreviation, text };

// The name of a column, compared with those that people give to titles, abbreviations and texts in English,
// German, Spanish, French, Italian, Portuguese, Dutch and Polish. Case, accents and the characters between
// words do not count: "Plain Text", "plain_text" and "plainText" are one name.
class ColumnName {
 public:
  static constexpr std::size_t kUnknown = std::numeric_limits<std::size_t>::max();

  explicit ColumnName(std::u16string_view header);

  // How telling the whole name is for the role; the lowest rank tells most.
  std::size_t rank(ColumnRole role) const;
  // The same by a word of the name: "Snippet name" is a title, "Context" no text.
  std::size_t rankOfWord(ColumnRole role) const;

 private:
  std::vector<std::u16string> words_;
  std::u16string whole_;
};

}  // namespace quorlo
