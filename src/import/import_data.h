#pragma once

#include "store/records/snippet_type.h"
#include "text/attributed_string.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace quorlo {

// What a file of snippets holds, in this program's terms and apart from any library. The readers of all
// formats make it, the snippet importer takes it.

struct ImportedSnippet {
  std::u16string title;         // empty when the file has none
  std::u16string abbreviation;  // as it stands in the file, whether it may be used or not; empty for none
  AttributedString text;        // with this program's macro markup
  SnippetType type = SnippetType::plainText;
  std::optional<std::size_t> folder;  // an index into ImportData::folders
};

// Something of the file that could not be kept as it was, in words for the user.
struct ImportNotice {
  std::u16string snippet;  // its title or abbreviation; empty when the file as a whole is meant
  std::u16string message;
};

struct ImportData {
  std::vector<ImportedSnippet> snippets;
  std::vector<std::u16string> folders;  // titles
  std::vector<ImportNotice> notices;
};

}  // namespace quorlo
