#include "cli/definition/arguments.h"

#include "text/utf.h"

#include <CLI/CLI.hpp>

#include <algorithm>

namespace quorlo {
namespace {

// Empty where there is none, as CLI11 takes it.
std::string faultOfText(const std::string& bytes) {
  const auto text = toUtf16Strict(bytes);
  return text ? std::string() : "not a text in UTF-8: " + text.error().message;
}

}  // namespace

CLI::Option* addText(CLI::App& command, const std::string& name, std::optional<std::string>& value,
                     const std::string& description, const std::string& typeName) {
  return command.add_option(name, value, description)->check(faultOfText)->type_name(typeName);
}

CLI::Option* addTexts(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                      const std::string& description, const std::string& typeName) {
  return command.add_option(name, values, description)->check(faultOfText)->type_name(typeName);
}

bool takesValue(const CLI::Option& option) {
  return option.get_items_expected_max() > 0;
}

CLI::Option* addChoice(CLI::App& command, const std::string& name, std::string& value,
                       const std::vector<std::string_view>& choices, const std::string& description) {
  std::string names;
  for (const auto& each : choices) names.append(names.empty() ? "" : "|").append(each);
  const auto fault = [choices, names](const std::string& given) {
    return std::ranges::find(choices, given) == choices.end() ? "\"" + given + "\" is none of " + names : "";
  };
  return command.add_option(name, value, description)->check(fault)->type_name(names);
}

}  // namespace quorlo
