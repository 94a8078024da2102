#include "macros/fill_in_macros.h"

#include "macros/macro_arguments.h"

#include <algorithm>
#include <map>
#include <utility>

namespace quorlo {
namespace {

constexpr std::u16string_view kEntryName = u"name";

// The values of the arguments "name0", "name1" and so on, as searching for each would find them; in one
// pass, since a list may have thousands of entries.
std::vector<std::u16string> readEntries(std::u16string_view macroString) {
  std::map<std::u16string_view, std::u16string_view> values;  // by the number's digits
  std::size_t end = 0;  // of the value that is read; many names may stand in one value
  for (auto found = macroString.find(kEntryName); found != macroString.npos;
       found = macroString.find(kEntryName, found + 1)) {
    const auto digits = found + kEntryName.size();
    const auto equal = std::min(macroString.find_first_not_of(u"0123456789", digits), macroString.size());
    if (end < equal) end = macroString.find(macroAgrumentValueEndCharacter, equal);
    if (end == macroString.npos) break;
    if (macroString[equal] != u'=') continue;
    values.try_emplace(macroString.substr(digits, equal - digits),
                       macroString.substr(equal + 1, end - equal - 1));
  }
  std::vector<std::u16string> entries;
  // Values that were written as they should stand apart. Damaged ones may hold each other, and would
  // together be far longer than the macro.
  auto room = macroString.size();
  for (;;) {
    const auto number = std::to_string(entries.size());
    const auto value = values.find(std::u16string(number.begin(), number.end()));
    if (value == values.end() || value->second.size() > room) return entries;
    room -= value->second.size();
    entries.push_back(unescapeMacroValue(value->second));
  }
}

// Which macros share a field.
class FieldNumbers {
 public:
  // The field of a macro; true when it is a new one.
  std::pair<std::size_t, bool> field(MacroType type, const std::u16string& name) {
    if (name.empty()) return {count_++, true};
    const auto [known, isNew] = numbers_.try_emplace({type, name}, count_);
    if (isNew) ++count_;
    return {known->second, isNew};
  }

 private:
  std::map<std::pair<MacroType, std::u16string>, std::size_t> numbers_;
  std::size_t count_ = 0;
};

bool asksTheUser(MacroType type, std::u16string_view macroString) {
  switch (type) {
    case MacroType::textField:
    case MacroType::options:
      return true;
    case MacroType::date:
      return readBoolean(valueForArgument(u"showPicker", macroString).value_or(u""));
    default:
      return false;
  }
}

FillInField readField(MacroType type, std::u16string name, std::u16string_view macroString) {
  FillInField field{type, std::move(name), std::u16string(macroString), {}, {}};
  if (type == MacroType::textField)
    field.defaultText = valueForArgument(u"default", macroString).value_or(u"");
  if (type == MacroType::options) field.options = optionList(macroString);
  return field;
}

}  // namespace

OptionList optionList(std::u16string_view macroString) {
  const auto value = [&](std::u16string_view name) { return valueForArgument(name, macroString); };
  OptionList list;
  list.entries = readEntries(macroString);
  const auto chosen = readInteger(value(u"default").value_or(u"0")).value_or(0);
  if (chosen >= 0 && std::cmp_less(chosen, list.entries.size())) {
    list.defaultEntry = static_cast<std::size_t>(chosen);
  }
  list.multiple = readBoolean(value(u"multiple").value_or(u""));
  list.choiceType = multipleChoiseTypeFromRawValue(value(u"choiceType").value_or(u""))
                        .value_or(MultipleChoiseType::separator);
  if (auto separator = value(u"separator")) list.separator = std::move(*separator);
  return list;
}

std::u16string joinChoices(const OptionList& list, const std::vector<std::u16string>& chosen) {
  std::u16string before;
  std::u16string between;
  if (!list.multiple || list.choiceType == MultipleChoiseType::separator) {
    between = list.separator;
  } else {
    before = list.choiceType == MultipleChoiseType::bulletedList ? u"• " : u"- ";
    between = u"\n";
  }
  std::u16string text;
  for (const auto& entry : chosen) {
    if (&entry != &chosen.front()) text += between;
    text += before + entry;
  }
  return text;
}

FillInMacros fillInMacros(std::u16string_view text) {
  return fillInMacros(text, readableMacros(text));
}

FillInMacros fillInMacros(std::u16string_view text, std::span<const MacroOccurrence> macros) {
  FillInMacros result;
  FieldNumbers numbers;
  for (const auto& [range, type] : macros) {
    const auto macroString = text.substr(range.location, range.length);
    auto& fieldOfMacro = result.fieldOfMacro.emplace_back();
    if (!asksTheUser(type, macroString)) continue;
    auto name = valueForArgument(u"name", macroString).value_or(u"");
    const auto [field, isNew] = numbers.field(type, name);
    fieldOfMacro = field;
    if (isNew) result.fields.push_back(readField(type, std::move(name), macroString));
  }
  return result;
}

}  // namespace quorlo
