#pragma once

#include <algorithm>
#include <string>
#include <string_view>

namespace quorlo {

// For names and files of which only the ASCII letters have two cases, whatever the locale.
inline char lowerCase(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

inline std::string lowerCase(std::string_view text) {
  std::string result(text);
  std::ranges::transform(result, result.begin(), [](char c) { return lowerCase(c); });
  return result;
}

inline bool equalIgnoringCase(std::string_view a, std::string_view b) {
  return std::ranges::equal(a, b, [](char x, char y) { return lowerCase(x) == lowerCase(y); });
}

// Without the blanks at both ends.
inline std::string_view trimmed(std::string_view text) {
  constexpr std::string_view kBlank = " \t\r\n";
  const auto begin = text.find_first_not_of(kBlank);
  if (begin == std::string_view::npos) return {};
  return text.substr(begin, text.find_last_not_of(kBlank) - begin + 1);
}

}  // namespace quorlo
