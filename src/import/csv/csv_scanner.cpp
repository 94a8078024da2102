#include "import/csv/csv_scanner.h"

#include "store/localized_format.h"
#include "text/utf.h"

#include <algorithm>

namespace quorlo {
namespace {

constexpr std::u16string_view kLineEnds = u"\r\n";

std::u16string_view withoutQuotes(std::u16string_view field) {
  if (field.size() == 1 && field[0] == u'"') return {};
  const bool isQuoted = field.size() > 1 && field.front() == u'"' && field.back() == u'"';
  return isQuoted ? field.substr(1, field.size() - 2) : field;
}

// The line ends at the end of a row are those of its last field; where it has one field, which is nothing
// else, there is no field.
void trimEnd(CsvFields& fields) {
  auto& last = fields.back();
  last = last.substr(0, last.find_last_not_of(kLineEnds) + 1);
  if (last.empty() && fields.size() == 1) fields.clear();
}

}  // namespace

bool CsvScanner::next(CsvFields& fields) {
  fields.clear();
  if (isAtEnd_ || position_ >= text_.size()) {
    // A final line feed has an empty row behind it.
    const bool endsWithRow = !isAtEnd_ && !text_.empty();
    isAtEnd_ = true;
    return endsWithRow;
  }
  rowStart_ = position_;
  const auto* const end = text_.data() + text_.size();
  const auto* at = text_.data() + position_;
  while (at != end && *at == u'\r') ++at;
  const auto* fieldStart = at;
  bool isQuoted = false;
  for (; at != end; ++at) {
    if (*at == u'"') {
      isQuoted = !isQuoted;
    } else if (!isQuoted && *at == u'\n') {
      break;
    } else if (!isQuoted && *at == separator_) {
      fields.emplace_back(fieldStart, at);
      fieldStart = at + 1;
      if (fields.size() >= kMostColumns) break;
    }
  }
  position_ = static_cast<std::size_t>(at - text_.data());
  isQuoted_ = isQuoted;
  if (fields.size() >= kMostColumns) {
    status_ = Error{
        toUtf8(localizedFormat(u"the row in line %d has more than a million fields; choose another separator",
                               static_cast<std::int64_t>(line())))};
    isAtEnd_ = true;
    return false;
  }
  fields.emplace_back(fieldStart, at);
  isAtEnd_ = at == end;
  if (!isAtEnd_) ++position_;
  trimEnd(fields);
  std::ranges::transform(fields, fields.begin(), withoutQuotes);
  return true;
}

std::optional<std::size_t> CsvScanner::unclosedLine() {
  if (!isQuoted_) return std::nullopt;
  return line();
}

std::size_t CsvScanner::line() {
  const auto uncounted = text_.substr(countedTo_, rowStart_ - countedTo_);
  countedLines_ += static_cast<std::size_t>(std::ranges::count(uncounted, u'\n'));
  countedTo_ = rowStart_;
  return 1 + countedLines_;
}

}  // namespace quorlo
