#include "macros/dates/date_and_time_formatter.h"

#include "base/fatal.h"
#include "base/log.h"
#include "platform/environment.h"
#include "text/utf.h"

#include <unicode/localpointer.h>
#include <unicode/udat.h>
#include <unicode/utypes.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <map>
#include <tuple>
#include <utility>

namespace quorlo {
namespace {

UDateFormatStyle icuStyle(DateStyle style) {
  switch (style) {
    case DateStyle::none:
      break;
    case DateStyle::shortStyle:
      return UDAT_SHORT;
    case DateStyle::mediumStyle:
      return UDAT_MEDIUM;
    case DateStyle::longStyle:
      return UDAT_LONG;
    case DateStyle::fullStyle:
      return UDAT_FULL;
  }
  return UDAT_NONE;
}

icu::LocalUDateFormatPointer open(const DateContext& context, UDateFormatStyle date, UDateFormatStyle time) {
  const auto zone = toUtf16(context.timeZone);
  UErrorCode status = U_ZERO_ERROR;
  icu::LocalUDateFormatPointer format(udat_open(time, date, context.locale.c_str(), zone.data(),
                                                static_cast<std::int32_t>(zone.size()), u"", 0, &status));
  if (U_FAILURE(status)) {
    logError(std::string("ERROR: Dates cannot be written; the ICU library says ") + u_errorName(status));
  }
  return format;
}

std::u16string write(const UDateFormat* format, Moment moment) {
  const auto date = static_cast<UDate>(moment.time_since_epoch().count());
  std::u16string text(64, u'\0');
  for (;;) {
    UErrorCode status = U_ZERO_ERROR;
    const auto length =
        udat_format(format, date, text.data(), static_cast<std::int32_t>(text.size()), nullptr, &status);
    if (U_FAILURE(status) && status != U_BUFFER_OVERFLOW_ERROR) return {};
    const bool fits = static_cast<std::size_t>(length) <= text.size();
    text.resize(static_cast<std::size_t>(length));
    if (fits) return text;
  }
}

}  // namespace

struct DateAndTimeFormatter::Formats {
  using Key = std::tuple<std::string, std::string, UDateFormatStyle, UDateFormatStyle>;

  UDateFormat* get(const DateContext& context, UDateFormatStyle date, UDateFormatStyle time) {
    auto& format = opened[{context.locale, context.timeZone, date, time}];
    if (format.isNull()) format = open(context, date, time);
    return format.getAlias();
  }

  std::map<Key, icu::LocalUDateFormatPointer> opened;
};

DateAndTimeFormatter::DateAndTimeFormatter(const Environment& environment)
    : environment_(environment), formats_(std::make_unique<Formats>()) {
  readEnvironment();
}

DateAndTimeFormatter::~DateAndTimeFormatter() = default;

void DateAndTimeFormatter::readEnvironment() {
  auto languages = environment_.preferredLanguages();
  if (languages.empty()) fatal("ERROR: The environment names no language to write dates in.");
  userContext_ = {std::move(languages.front()), environment_.timeZone()};
}

std::u16string DateAndTimeFormatter::string(Moment moment, const DateContext& context, DateStyle dateStyle,
                                            DateStyle timeStyle) {
  if (dateStyle == DateStyle::none && timeStyle == DateStyle::none) return {};
  const auto* const format = formats_->get(context, icuStyle(dateStyle), icuStyle(timeStyle));
  if (!format) return {};
  auto text = write(format, moment);
  std::ranges::replace(text, u'\u202F', u' ');
  return text;
}

std::u16string DateAndTimeFormatter::string(Moment moment, const DateContext& context,
                                            std::u16string_view pattern) {
  auto* const format = formats_->get(context, UDAT_PATTERN, UDAT_PATTERN);
  if (!format) return {};
  udat_applyPattern(format, false, pattern.data(), static_cast<std::int32_t>(pattern.size()));
  return write(format, moment);
}

}  // namespace quorlo
