#include "text/locale_quotes.h"

#include <unicode/localpointer.h>
#include <unicode/uloc.h>
#include <unicode/ulocdata.h>
#include <unicode/utypes.h>

#include <cstddef>
#include <cstdint>

namespace quorlo {
namespace {

// Empty when the locale names none.
std::u16string delimiter(ULocaleData* data, ULocaleDataDelimiterType type) {
  char16_t mark[16];
  UErrorCode status = U_ZERO_ERROR;
  const auto length = ulocdata_getDelimiter(data, type, mark, std::size(mark), &status);
  return U_SUCCESS(status) ? std::u16string(mark, static_cast<std::size_t>(length)) : std::u16string();
}

}  // namespace

QuotationMarks quotationMarks(const std::string& localeName) {
  const auto withoutCharset = localeName.substr(0, localeName.find('.'));
  if (withoutCharset.empty()) return {};
  char canonical[ULOC_FULLNAME_CAPACITY];
  UErrorCode status = U_ZERO_ERROR;
  uloc_canonicalize(withoutCharset.c_str(), canonical, sizeof canonical, &status);
  if (U_FAILURE(status) || status == U_STRING_NOT_TERMINATED_WARNING) return {};

  const icu::LocalULocaleDataPointer data(ulocdata_open(canonical, &status));
  // Of an unknown locale ICU would answer with the marks of the process's own.
  if (U_FAILURE(status) || status == U_USING_DEFAULT_WARNING) return {};
  QuotationMarks marks{delimiter(data.getAlias(), ULOCDATA_QUOTATION_START),
                       delimiter(data.getAlias(), ULOCDATA_QUOTATION_END)};
  return marks.begin.empty() || marks.end.empty() ? QuotationMarks{} : marks;
}

}  // namespace quorlo
