#include "import/formats/property_lists/xml_leaf_values.h"

#include "text/utf.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <utility>

namespace quorlo {
namespace {

constexpr std::string_view kSpace = " \t\r\n";

bool isDigit(char each) {
  return each >= '0' && each <= '9';
}

std::string_view trimmed(std::string_view text) {
  const auto start = std::min(text.find_first_not_of(kSpace), text.size());
  text.remove_prefix(start);
  return text.substr(0, text.find_last_not_of(kSpace) + 1);
}

template <class Number>
std::optional<Number> number(std::string_view digits, int base) {
  Number value = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), value, base);
  if (error != std::errc() || end != digits.data() + digits.size()) return std::nullopt;
  return value;
}

// Of 64 bits, decimal or hexadecimal.
bool isInteger(std::string_view text) {
  const bool isNegative = text.starts_with('-');
  if (isNegative || text.starts_with('+')) text.remove_prefix(1);
  if (text.empty() || text.front() == '-') return false;
  if (text.starts_with("0x") || text.starts_with("0X"))
    return number<std::uint64_t>(text.substr(2), 16).has_value();
  const auto value = number<std::uint64_t>(text, 10);
  return value && (!isNegative || *value <= std::uint64_t{1} << 63U);
}

bool isReal(std::string_view text) {
  if (text.starts_with('+')) text.remove_prefix(1);
  double value = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

bool isDate(std::string_view text) {
  constexpr std::string_view kForm = "0000-00-00T00:00:00Z";
  return std::ranges::equal(text, kForm,
                            [](char each, char form) { return form == '0' ? isDigit(each) : each == form; });
}

bool isBase64(std::string_view text) {
  std::size_t count = 0;
  std::size_t padding = 0;
  for (const char each : text) {
    if (kSpace.find(each) != std::string_view::npos) continue;
    ++count;
    if (each == '=') {
      ++padding;
      continue;
    }
    const bool isLetter = (each >= 'A' && each <= 'Z') || (each >= 'a' && each <= 'z');
    if (padding > 0 || !(isLetter || isDigit(each) || each == '+' || each == '/')) return false;
  }
  return count % 4 == 0 && padding <= 2;
}

}  // namespace

std::optional<std::string> referencedCharacter(std::string_view name) {
  static constexpr std::pair<std::string_view, char> kNamed[] = {
      {"amp", '&'}, {"lt", '<'}, {"gt", '>'}, {"quot", '"'}, {"apos", '\''}};
  if (const auto* named = std::ranges::find(kNamed, name, &std::pair<std::string_view, char>::first);
      named != std::end(kNamed))
    return std::string(1, named->second);
  if (!name.starts_with('#')) return std::nullopt;
  const bool isHexadecimal = name.starts_with("#x");
  const auto scalar = number<std::uint32_t>(name.substr(isHexadecimal ? 2 : 1), isHexadecimal ? 16 : 10);
  if (!scalar || *scalar == 0 || *scalar > 0x10FFFF || (*scalar >= 0xD800 && *scalar < 0xE000))
    return std::nullopt;
  if (*scalar < 0x10000) return toUtf8(std::u16string(1, static_cast<char16_t>(*scalar)));
  return toUtf8(std::u16string{static_cast<char16_t>(0xD7C0 + (*scalar >> 10U)),
                               static_cast<char16_t>(0xDC00 + (*scalar & 0x3FFU))});
}

bool isContentOf(std::string_view element, std::string_view text) {
  if (element == "integer") return isInteger(trimmed(text));
  if (element == "real") return isReal(trimmed(text));
  if (element == "date") return isDate(trimmed(text));
  if (element == "data") return isBase64(text);
  if (element == "true" || element == "false") return trimmed(text).empty();
  return true;
}

}  // namespace quorlo
