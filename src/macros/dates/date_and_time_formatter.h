#pragma once

#include "macros/dates/moment.h"
#include "platform/environment/time_zone.h"

#include <memory>
#include <string>
#include <string_view>

namespace quorlo {

class Environment;

// Lengths in which the Unicode CLDR words a date or a time for each language. The numbers count upwards.
enum class DateStyle { none, shortStyle, mediumStyle, longStyle, fullStyle };

// Whose date it is.
struct DateContext {
  std::string locale;  // an ICU name, such as "de_DE"; names the calendar too
  TimeZone timeZone;
};

// Writes moments as text, with the clock of the context's time zone. Where the rules that ICU has for the
// zone differ from the context's, the zone reads as its offset ("GMT+3"). Every call states styles, pattern
// and locale, so that nothing is left from one rendering to the next. What ICU needs for each is kept, since
// opening it takes far longer than a rendering. Main thread.
class DateAndTimeFormatter {
 public:
  // `environment` outlives the formatter. One that names no language is fatal.
  explicit DateAndTimeFormatter(const Environment& environment);
  ~DateAndTimeFormatter();
  DateAndTimeFormatter(const DateAndTimeFormatter&) = delete;
  DateAndTimeFormatter& operator=(const DateAndTimeFormatter&) = delete;

  // Takes the user's first language and the time zone, which a journey changes, from the environment anew.
  // Called before a text's dates are rendered rather than for each of them, since the environment may have
  // to look at files.
  void readEnvironment();

  // As read last; the constructor reads for the first time.
  const DateContext& userContext() const { return userContext_; }

  // Date and time in standard styles; empty when both are none. The text is meant to be typed into other
  // programs: where the CLDR sets a narrow no-break space (U+202F, in English before AM and PM) it has an
  // ordinary one.
  std::u16string string(Moment moment, const DateContext& context, DateStyle dateStyle, DateStyle timeStyle);

  // By a date pattern of UTS #35; empty when it is none, as one with an unknown letter.
  std::u16string string(Moment moment, const DateContext& context, std::u16string_view pattern);

 private:
  struct Formats;

  const Environment& environment_;
  DateContext userContext_;
  std::unique_ptr<Formats> formats_;
};

}  // namespace quorlo
