#pragma once

#include <string>

namespace quorlo {

struct QuotationMarks {
  std::u16string begin = u"\"";
  std::u16string end = u"\"";

  bool operator==(const QuotationMarks&) const = default;
};

// The opening and closing quotation marks of a locale ("de_DE", "de-DE" or "de_DE.UTF-8") by the Unicode
// CLDR; plain double quotes where the locale is unknown or names none.
QuotationMarks quotationMarks(const std::string& localeName);

}  // namespace quorlo
