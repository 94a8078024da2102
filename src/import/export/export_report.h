#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace quorlo {

// Something that the exported file does not hold as it is in the library, in words for the user.
struct ExportWarning {
  std::u16string snippet;  // as its title is shown; empty when the file as a whole is meant
  std::u16string message;  // a sentence

  bool operator==(const ExportWarning&) const = default;
};

struct ExportReport {
  std::size_t snippets = 0;
  std::size_t folders = 0;
  std::vector<ExportWarning> warnings;  // in the order of the snippets
};

}  // namespace quorlo
