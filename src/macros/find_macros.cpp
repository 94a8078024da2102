#include "macros/find_macros.h"

#include "base/log.h"
#include "macros/macro_arguments.h"
#include "text/utf.h"

#include <fmt/format.h>

#include <algorithm>

namespace quorlo {
namespace {

constexpr auto kNowhere = std::u16string_view::npos;

// Where a run may begin or end. Found once for all types: searching the text itself for each of them
// takes several times as long.
std::vector<std::size_t> percentSigns(std::u16string_view text) {
  std::vector<std::size_t> signs;
  for (auto sign = text.find(u'%'); sign != kNowhere; sign = text.find(u'%', sign + 1)) signs.push_back(sign);
  return signs;
}

void findMacrosOfType(MacroType type, bool shortEndings, std::u16string_view text,
                      const std::vector<std::size_t>& signs, std::vector<MacroOccurrence>& found) {
  const auto name = rawValue(type);
  const auto closingName = shortEndings || type == MacroType::cursor ? std::u16string_view() : name;
  for (auto sign = signs.begin(); sign != signs.end(); ++sign) {
    const auto start = *sign;
    const auto inside = start + 1 + name.size();
    // An opening in the last place could not be closed any more.
    if (inside >= text.size()) return;
    if (text.compare(start + 1, name.size(), name) != 0) continue;
    sign = std::find_if(sign + 1, signs.end(), [&](std::size_t end) {
      return end >= inside + closingName.size() &&
             text.compare(end - closingName.size(), closingName.size(), closingName) == 0;
    });
    if (sign == signs.end()) {
      // No later opening of this type can have a closing either.
      logWarning("WARNING: #3ddsdsc string may contain unsupported macros: " + userText(toUtf8(text)));
      logDebug(fmt::format("The macro of type {} at {} is not closed.", toUtf8(name), start));
      return;
    }
    found.push_back({{start, *sign + 1 - start}, type});
  }
}

}  // namespace

std::vector<MacroOccurrence> findMacros(std::u16string_view text) {
  std::vector<MacroOccurrence> found;
  if (text.size() < 2) return found;
  const bool shortEndings = text.find(u"%clipboard%") != kNowhere;
  const auto signs = percentSigns(text);
  for (const auto type : kAllMacroTypes) findMacrosOfType(type, shortEndings, text, signs, found);
  std::ranges::stable_sort(found, {},
                           [](const MacroOccurrence& occurrence) { return occurrence.range.location; });
  return found;
}

std::vector<MacroOccurrence> readableMacros(std::u16string_view text) {
  std::vector<MacroOccurrence> macros;
  std::size_t end = 0;
  for (const auto& occurrence : findMacros(text)) {
    if (occurrence.range.location < end) continue;
    if (macroType(text.substr(occurrence.range.location, occurrence.range.length)) != occurrence.type)
      continue;
    macros.push_back(occurrence);
    end = occurrence.range.end();
  }
  return macros;
}

std::vector<std::u16string> findMacroStrings(std::u16string_view text) {
  std::vector<std::u16string> strings;
  for (const auto& macro : readableMacros(text)) {
    strings.emplace_back(text.substr(macro.range.location, macro.range.length));
  }
  return strings;
}

}  // namespace quorlo
