#include "import/formats/fill_in_markers.h"

#include "import/formats/macro_text_writer.h"
#include "macros/macro_type.h"

#include <cstddef>
#include <utility>
#include <vector>

namespace quorlo {
namespace {

std::u16string numbered(std::size_t number) {
  const auto digits = std::to_string(number);
  return {digits.begin(), digits.end()};
}

struct Arguments {
  std::u16string name;
  std::optional<std::u16string> defaultValue;
  std::vector<std::u16string> entries;  // what has no name of its own, and the default, in their order
  std::size_t defaultEntry = 0;
};

Arguments readArguments(std::u16string_view text) {
  Arguments arguments;
  while (true) {
    const auto colon = text.find(u':');
    const auto part = text.substr(0, colon);
    if (part.starts_with(u"name=")) {
      arguments.name = part.substr(5);
    } else if (part.starts_with(u"default=")) {
      arguments.defaultEntry = arguments.entries.size();
      arguments.defaultValue = part.substr(8);
      arguments.entries.emplace_back(part.substr(8));
    } else if (!part.starts_with(u"width=") && !part.starts_with(u"height=")) {
      arguments.entries.emplace_back(part);
    }
    if (colon == text.npos) return arguments;
    text.remove_prefix(colon + 1);
  }
}

// A colon in a default is no end of it, since a text field has no entries.
std::u16string textFieldDefault(const Arguments& arguments) {
  if (!arguments.defaultValue) return {};
  auto value = *arguments.defaultValue;
  for (auto entry = arguments.defaultEntry + 1; entry < arguments.entries.size(); ++entry) {
    value += u':';
    value += arguments.entries[entry];
  }
  return value;
}

std::u16string textFieldMacro(std::u16string name, std::u16string defaultText) {
  return macroMarkup(MacroType::textField,
                     {{u"name", std::move(name)}, {u"default", std::move(defaultText)}});
}

std::u16string optionsMacro(std::u16string name, std::size_t defaultEntry,
                            std::vector<std::u16string> entries) {
  std::vector<MacroArgument> arguments{{u"name", std::move(name)}, {u"default", numbered(defaultEntry)}};
  for (std::size_t i = 0; i < entries.size(); ++i) {
    arguments.push_back({u"name" + numbered(i), std::move(entries[i])});
  }
  return macroMarkup(MacroType::options, arguments);
}

}  // namespace

std::optional<std::u16string> fillInMacro(std::u16string_view name, std::u16string_view arguments) {
  if (name == u"fill") return textFieldMacro(std::u16string(arguments), {});
  const bool isField = name == u"filltext" || name == u"fillarea";
  if (!isField && name != u"fillpopup") return std::nullopt;
  auto read = readArguments(arguments);
  if (isField) return textFieldMacro(read.name, textFieldDefault(read));
  return optionsMacro(std::move(read.name), read.defaultEntry, std::move(read.entries));
}

std::u16string optionalPartMacro(std::u16string_view arguments, std::u16string_view part) {
  auto read = readArguments(arguments);
  const std::size_t chosen = read.defaultValue == u"yes" ? 0 : 1;
  return optionsMacro(std::move(read.name), chosen, {std::u16string(part), {}});
}

}  // namespace quorlo
