#pragma once

#include "fakes/fake_environment.h"
#include "macros/custom_date_format.h"
#include "macros/date_and_time_formatter.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <type_traits>

namespace quorlo {

// A format reads as its tokens read one by one.
inline bool readsAsItsTokens(std::u16string_view format, Moment date, DateAndTimeFormatter& formatter) {
  std::u16string joined;
  for (const auto& piece : tokenizeCustomDateFormat(format)) {
    joined += std::visit(
        [&](const auto& part) {
          if constexpr (std::is_same_v<decltype(part), const std::u16string&>) {
            return part;
          } else {
            return formatCustomDate(part.representedString, date, formatter);
          }
        },
        piece);
  }
  return formatCustomDate(format, date, formatter) == joined;
}

// Takes a moment from the first bytes and a format from the others.
inline void fuzzCustomDate(const std::uint8_t* data, std::size_t size) {
  static const FakeEnvironment environment;
  static DateAndTimeFormatter formatter(environment);
  std::int64_t milliseconds = 0;  // a sixtieth of it lies within five million years
  if (size < sizeof milliseconds) return;
  std::memcpy(&milliseconds, data, sizeof milliseconds);
  const Moment date(std::chrono::milliseconds(milliseconds / 60));
  std::u16string format((size - sizeof milliseconds) / sizeof(char16_t), u'\0');
  std::memcpy(format.data(), data + sizeof milliseconds, format.size() * sizeof(char16_t));
  if (!readsAsItsTokens(format, date, formatter)) std::abort();
}

}  // namespace quorlo
