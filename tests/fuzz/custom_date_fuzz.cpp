// Renders a custom format, which reads as its tokens read one by one. An input is a moment and the format.

#include "fakes/fake_environment.h"
#include "fuzz/fuzz_target.h"
#include "macros/dates/custom_date_format.h"
#include "macros/dates/date_and_time_formatter.h"

#include <cstring>
#include <variant>

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace quorlo;
  static const FakeEnvironment environment;
  static DateAndTimeFormatter formatter(environment);
  std::int64_t milliseconds = 0;
  if (size < sizeof milliseconds) return 0;
  std::memcpy(&milliseconds, data, sizeof milliseconds);
  const Moment date(std::chrono::milliseconds(milliseconds / 1'000));
  const auto format = fuzzText(data + sizeof milliseconds, size - sizeof milliseconds);

  std::u16string joined;
  const auto read = [&](const auto& token) {
    return formatCustomDate(token.representedString, date, formatter);
  };
  for (const auto& piece : tokenizeCustomDateFormat(format)) {
    if (const auto* text = std::get_if<std::u16string>(&piece)) joined += *text;
    if (const auto* token = std::get_if<PlainDateToken>(&piece)) joined += read(*token);
    if (const auto* token = std::get_if<QLDateToken>(&piece)) joined += read(*token);
  }
  require(formatCustomDate(format, date, formatter) == joined);
  return 0;
}
