#include "macros/find_macros.h"

#include "base/log.h"
#include "macros/macro_arguments.h"
#include "text/utf.h"

#include <fmt/format.h>

#include <algorithm>

namespace quorlo {
namespace {

constexpr auto kNowhere = std::u16string_view::npos;

void findMacrosOfType(MacroType type, bool shortEndings, std::u16string_view text,
                      std::vector<MacroOccurrence>& found) {
  const auto opening = u"%" + std::u16string(rawValue(type));
  const auto closing =
      shortEndings || type == MacroType::cursor ? u"%" : std::u16string(rawValue(type)) + u"%";
  // An opening in the last place could not be closed any more.
  const auto searched = text.substr(0, text.size() - 1);
  for (auto start = searched.find(opening); start != kNowhere;) {
    const auto close = text.find(closing, start + opening.size());
    if (close == kNowhere) {
      // No later opening of this type can have a closing either.
      logWarning("WARNING: #3ddsdsc string may contain unsupported macros: " + toUtf8(text));
      logDebug(fmt::format("The macro of type {} at {} is not closed.", toUtf8(rawValue(type)), start));
      return;
    }
    const auto end = close + closing.size();
    found.push_back({{start, end - start}, type});
    start = searched.find(opening, end);
  }
}

}  // namespace

std::vector<MacroOccurrence> findMacros(std::u16string_view text) {
  std::vector<MacroOccurrence> found;
  if (text.size() < 2) return found;
  const bool shortEndings = text.find(u"%clipboard%") != kNowhere;
  for (const auto type : kAllMacroTypes) findMacrosOfType(type, shortEndings, text, found);
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
