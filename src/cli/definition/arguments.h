#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
class Option;
}  // namespace CLI

namespace quorlo {

// Options and arguments as the commands have them in common. The values outlive the parsing. What an option
// takes is its type name, by which completion knows what to offer: TEXT, FILE, SNIPPET, TRASHED (a snippet in
// the trash), FOLDER, or the choices themselves ("csv|json").

// A text in UTF-8; wrong usage where it is ill-formed.
CLI::Option* addText(CLI::App& command, const std::string& name, std::optional<std::string>& value,
                     const std::string& description, const std::string& typeName = "TEXT");
CLI::Option* addTexts(CLI::App& command, const std::string& name, std::vector<std::string>& values,
                      const std::string& description, const std::string& typeName = "TEXT");

inline constexpr auto kSnippetNameHelp = "Its abbreviation, title or uuid, or the beginning of the uuid";

// Not a flag.
bool takesValue(const CLI::Option& option);

// One of the choices.
CLI::Option* addChoice(CLI::App& command, const std::string& name, std::string& value,
                       const std::vector<std::string_view>& choices, const std::string& description);

}  // namespace quorlo
