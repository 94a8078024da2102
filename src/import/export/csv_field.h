#pragma once

#include <string>
#include <string_view>

namespace quorlo {

// How a value stands in a row of a table with commas (docs/formats.md), so that it disturbs neither the
// other fields of its row nor the other rows.
struct CsvField {
  std::string text;
  // The reader makes the value of it again. Otherwise its quotes are doubled, as most programs write and
  // read them, and the reader leaves them so.
  bool readsBack;
};

enum class CsvPlace { first, middle, last };

CsvField csvField(std::string_view value, CsvPlace place);

}  // namespace quorlo
