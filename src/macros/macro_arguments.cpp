#include "macros/macro_arguments.h"

#include "base/log.h"
#include "text/text_range.h"
#include "text/utf.h"

#include <fmt/format.h>

#include <limits>
#include <utility>

namespace quorlo {
namespace {

constexpr auto kNowhere = std::u16string_view::npos;

constexpr std::pair<char16_t, std::u16string_view> kEscapes[] = {
    {u':', u"(!(colon)!)"}, {u'=', u"(!(equal)!)"}, {u'%', u"(!(percent)!)"}};

std::u16string assignment(std::u16string_view name) {
  return std::u16string(name) + u'=';
}

// From behind the "=" to the ":" that ends the value.
std::optional<TextRange> valueRange(std::u16string_view name, std::u16string_view macroString) {
  const auto found = macroString.find(assignment(name));
  if (found == kNowhere) return std::nullopt;
  const auto start = found + name.size() + 1;
  const auto end = macroString.find(macroAgrumentValueEndCharacter, start);
  if (end == kNowhere) return std::nullopt;
  return TextRange{start, end - start};
}

std::u16string fullForm(std::u16string_view macroString, MacroType type) {
  if (macroString.find(macroSeperatorCharacter) != kNowhere) return std::u16string(macroString);
  const std::u16string name(rawValue(type));
  return u"%" + name + macroSeperatorCharacter + name + u"%";
}

}  // namespace

std::optional<MacroType> macroType(std::u16string_view macroString) {
  const auto end = macroString.find(macroSeperatorCharacter);
  if (end == kNowhere) {
    if (macroString.find(u"%cursor%") != kNowhere) return MacroType::cursor;
    if (macroString.find(u"%clipboard%") != kNowhere) return MacroType::clipboard;
    return std::nullopt;
  }
  return end == 0 ? std::nullopt : macroTypeFromRawValue(macroString.substr(1, end - 1));
}

std::optional<std::u16string> valueForArgument(std::u16string_view name, std::u16string_view macroString) {
  const auto range = valueRange(name, macroString);
  if (!range) return std::nullopt;
  if (range->end() > macroString.size()) {
    logError(fmt::format("ERROR: #CJEEIJef {{{}, {}}}, {}, {}", range->location, range->length,
                         macroString.size(), userText(toUtf8(macroString))));
    return std::nullopt;
  }
  return unescapeMacroValue(macroString.substr(range->location, range->length));
}

std::u16string setValueForArgument(std::u16string_view value, std::u16string_view name,
                                   std::u16string_view macroString, Escaping escaping) {
  const auto written = escaping == Escaping::escape ? escapeMacroValue(value) : std::u16string(value);
  if (const auto found = macroString.find(assignment(name)); found != kNowhere) {
    const auto start = found + name.size() + 1;
    const auto end = std::min(macroString.find(macroAgrumentValueEndCharacter, start), macroString.size());
    return std::u16string(macroString).replace(start, end - start, written);
  }
  const auto type = macroType(macroString);
  if (!type) return std::u16string(macroString);
  return fullForm(macroString, *type)
      .insert(rawValue(*type).size() + 2, assignment(name) + written + macroSeperatorCharacter);
}

std::optional<std::u16string> removeArgument(std::u16string_view name, std::u16string_view macroString) {
  const auto start = macroString.find(macroSeperatorCharacter + assignment(name));
  if (start == kNowhere) return std::nullopt;
  const auto end = macroString.find(macroAgrumentValueEndCharacter, start + name.size() + 2);
  if (end == kNowhere) {
    logWarning(fmt::format("WARNING: #rgjgbdd - {} {}", start, macroString.size()));
    return std::nullopt;
  }
  return std::u16string(macroString).erase(start, end - start);
}

std::u16string escapeMacroValue(std::u16string_view value) {
  std::u16string result;
  result.reserve(value.size());
  for (const char16_t character : value) {
    std::u16string_view written(&character, 1);
    for (const auto& [symbol, escape] : kEscapes) {
      if (character == symbol) written = escape;
    }
    result += written;
  }
  return result;
}

// One pass does what replacing one sequence after the other does: no symbol is part of a sequence, so
// a replacement never completes another one.
std::u16string unescapeMacroValue(std::u16string_view value) {
  std::u16string result;
  result.reserve(value.size());
  while (!value.empty()) {
    const auto next = value.find(u"(!(");
    result += value.substr(0, next);
    if (next == kNowhere) break;
    value.remove_prefix(next);
    std::size_t length = 1;
    char16_t character = value.front();
    for (const auto& [symbol, escape] : kEscapes) {
      if (!value.starts_with(escape)) continue;
      character = symbol;
      length = escape.size();
    }
    result += character;
    value.remove_prefix(length);
  }
  return result;
}

bool readBoolean(std::u16string_view value) {
  return !value.empty() && std::u16string_view(u"123456789yYtT").find(value.front()) != kNowhere;
}

std::optional<std::int64_t> readInteger(std::u16string_view value) {
  const bool negative = value.starts_with(u'-');
  if (negative || value.starts_with(u'+')) value.remove_prefix(1);
  if (value.empty()) return std::nullopt;
  std::int64_t number = 0;
  for (const char16_t character : value) {
    if (character < u'0' || character > u'9') return std::nullopt;
    // Downwards, where there is one number more.
    if (__builtin_mul_overflow(number, 10, &number)) return std::nullopt;
    if (__builtin_sub_overflow(number, character - u'0', &number)) return std::nullopt;
  }
  if (negative) return number;
  if (number == std::numeric_limits<std::int64_t>::min()) return std::nullopt;
  return -number;
}

}  // namespace quorlo
