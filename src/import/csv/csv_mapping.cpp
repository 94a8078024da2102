#include "import/csv/csv_mapping.h"

#include "text/case_folding.h"

#include <algorithm>
#include <array>
#include <span>
#include <string_view>

namespace quorlo {
namespace {

using Names = std::span<const std::u16string_view>;

// In the form of `plainName`, the most telling first.
constexpr std::array<std::u16string_view, 9> kTitleNames{u"title",       u"name",         u"label",
                                                         u"description", u"titel",        u"bezeichnung",
                                                         u"überschrift", u"beschreibung", u"betreff"};
constexpr std::array<std::u16string_view, 10> kAbbreviationNames{
    u"abbreviation", u"shortcut", u"trigger",  u"keyword",  u"abbr",
    u"abkürzung",    u"kürzel",   u"auslöser", u"kurzform", u"stichwort"};
constexpr std::array<std::u16string_view, 14> kTextNames{
    u"plaintext", u"text",         u"snippet",  u"content", u"expansion", u"replacement", u"phrase",
    u"body",      u"textbaustein", u"baustein", u"inhalt",  u"ersetzung", u"vorlage",     u"schnipsel"};

// Without case and what stands between words: "Plain Text" and "plain_text" are one name.
std::u16string plainName(std::u16string_view header) {
  auto name = foldCase(header);
  std::erase_if(name, [](char16_t c) { return c == u' ' || c == u'_' || c == u'-' || c == u'.'; });
  return name;
}

// Gives each role the first free column that matches one of its names.
template <class Matches>
void assign(CsvColumns& columns, const std::vector<std::u16string>& names, Matches matches) {
  const auto isFree = [&](std::size_t column) {
    return columns.title != column && columns.abbreviation != column && columns.text != column;
  };
  const auto find = [&](std::optional<std::size_t>& role, Names wanted) {
    for (const auto name : wanted) {
      for (std::size_t i = 0; i < names.size() && !role; ++i) {
        if (isFree(i) && matches(names[i], name)) role = i;
      }
    }
  };
  find(columns.abbreviation, kAbbreviationNames);
  find(columns.text, kTextNames);
  find(columns.title, kTitleNames);
}

CsvColumns columnsByPosition(std::size_t count) {
  if (count == 0) return {};
  if (count == 1) return {.title = {}, .abbreviation = {}, .text = 0};
  if (count == 2) return {.title = {}, .abbreviation = 0, .text = 1};
  return {.title = 0, .abbreviation = 1, .text = 2};
}

}  // namespace

CsvColumns guessColumns(const std::vector<std::u16string>& headers) {
  std::vector<std::u16string> names(headers.size());
  std::ranges::transform(headers, names.begin(), plainName);
  CsvColumns columns;
  assign(columns, names, [](const auto& name, auto wanted) { return name == wanted; });
  assign(columns, names, [](const auto& name, auto wanted) { return name.find(wanted) != name.npos; });
  if (columns == CsvColumns{}) return columnsByPosition(headers.size());
  for (auto i = headers.size(); i > 0 && !columns.text; --i) {
    if (columns.title != i - 1 && columns.abbreviation != i - 1) columns.text = i - 1;
  }
  return columns;
}

}  // namespace quorlo
