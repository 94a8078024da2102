#include "macros/dates/date_and_time_formatter.h"

#include "base/fatal.h"
#include "base/log.h"
#include "platform/environment/environment.h"
#include "text/utf.h"

#include <fmt/format.h>
#include <unicode/localpointer.h>
#include <unicode/ucal.h>
#include <unicode/udat.h>
#include <unicode/utypes.h>

#include <algorithm>
#include <array>
#include <chrono>
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

// As ICU takes it for a time zone.
std::string offsetName(std::chrono::seconds offset) {
  const std::chrono::hh_mm_ss parts(offset);
  return fmt::format("GMT{}{:02}:{:02}:{:02}", parts.is_negative() ? '-' : '+', parts.hours().count(),
                     parts.minutes().count(), parts.seconds().count());
}

// By the fields that read the same whatever the rules of the zone.
bool namesPlace(std::u16string_view pattern) {
  return pattern.find_first_not_of(u"Vv") == std::u16string_view::npos;
}

bool isKnownToIcu(const std::string& zone) {
  const auto name = toUtf16(zone);
  std::array<char16_t, 128> canonical;
  UErrorCode status = U_ZERO_ERROR;
  ucal_getCanonicalTimeZoneID(name.data(), static_cast<std::int32_t>(name.size()), canonical.data(),
                              static_cast<std::int32_t>(canonical.size()), nullptr, &status);
  return U_SUCCESS(status);
}

icu::LocalUDateFormatPointer open(const std::string& locale, const std::string& timeZone,
                                  UDateFormatStyle date, UDateFormatStyle time) {
  const auto zone = toUtf16(timeZone);
  UErrorCode status = U_ZERO_ERROR;
  icu::LocalUDateFormatPointer format(udat_open(time, date, locale.c_str(), zone.data(),
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

DateContext contextOf(const Environment& environment) {
  auto languages = environment.preferredLanguages();
  if (languages.empty()) fatal("ERROR: The environment names no language to write dates in.");
  return {std::move(languages.front()), environment.timeZone()};
}

}  // namespace

struct DateAndTimeFormatter::Formats {
  using Key = std::tuple<std::string, std::string, UDateFormatStyle, UDateFormatStyle>;

  UDateFormat* get(const std::string& locale, const std::string& timeZone, UDateFormatStyle date,
                   UDateFormatStyle time) {
    auto& format = opened[{locale, timeZone, date, time}];
    if (format.isNull()) format = open(locale, timeZone, date, time);
    return format.getAlias();
  }

  // The name under which ICU shows the zone's clock at the moment.
  std::string zoneName(const TimeZone& zone, Moment moment) {
    const auto offset = zone.offsetAt(moment);
    if (zone.name().empty()) return offsetName(offset);
    auto known = knownZones.find(zone.name());
    if (known == knownZones.end()) known = knownZones.emplace(zone.name(), icuTimeZone(zone.name())).first;
    return known->second.offsetAt(moment) == offset ? zone.name() : offsetName(offset);
  }

  std::map<Key, icu::LocalUDateFormatPointer> opened;
  std::map<std::string, TimeZone> knownZones;  // by ICU's rules
};

DateAndTimeFormatter::DateAndTimeFormatter(const Environment& environment)
    : environment_(environment),
      userContext_(contextOf(environment)),
      formats_(std::make_unique<Formats>()) {}

DateAndTimeFormatter::~DateAndTimeFormatter() = default;

void DateAndTimeFormatter::readEnvironment() {
  userContext_ = contextOf(environment_);
}

std::u16string DateAndTimeFormatter::string(Moment moment, const DateContext& context, DateStyle dateStyle,
                                            DateStyle timeStyle) {
  if (dateStyle == DateStyle::none && timeStyle == DateStyle::none) return {};
  const auto* const format = formats_->get(context.locale, formats_->zoneName(context.timeZone, moment),
                                           icuStyle(dateStyle), icuStyle(timeStyle));
  if (!format) return {};
  auto text = write(format, moment);
  std::ranges::replace(text, u'\u202F', u' ');
  return text;
}

std::u16string DateAndTimeFormatter::string(Moment moment, const DateContext& context,
                                            std::u16string_view pattern) {
  const auto& name = context.timeZone.name();
  if (pattern == u"VV" && !name.empty()) return toUtf16(name);
  const auto zone =
      namesPlace(pattern) && isKnownToIcu(name) ? name : formats_->zoneName(context.timeZone, moment);
  auto* const format = formats_->get(context.locale, zone, UDAT_PATTERN, UDAT_PATTERN);
  if (!format) return {};
  udat_applyPattern(format, false, pattern.data(), static_cast<std::int32_t>(pattern.size()));
  return write(format, moment);
}

}  // namespace quorlo
