#pragma once

#include "cli/definition/option_definition.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace quorlo {

inline constexpr auto kSnippetNameHelp = "Its abbreviation, title or uuid, or the beginning of the uuid";

// A command with its options, arguments and inner commands: plain data that parsing, help, manual page and
// completion read.
class CommandDefinition {
 public:
  CommandDefinition(std::string name, std::string description, const CommandDefinition* parent = nullptr);
  CommandDefinition(const CommandDefinition&) = delete;
  CommandDefinition& operator=(const CommandDefinition&) = delete;

  // The names of an option are "-f,--folder"; a name without a hyphen is an argument's. The values outlive
  // the parsing. The type of a value decides what completion offers: TEXT, FILE, SNIPPET, TRASHED (a snippet
  // in the trash, or a backup), FOLDER, SETTING, or the choices themselves ("csv|json").

  // A text in UTF-8; wrong usage where it is ill-formed.
  OptionDefinition& addText(std::string_view names, std::optional<std::string>& value,
                            std::string description, std::string type = "TEXT");
  OptionDefinition& addTexts(std::string_view names, std::vector<std::string>& values,
                             std::string description, std::string type = "TEXT");
  // The name of a file, of any bytes.
  OptionDefinition& addFile(std::string_view names, std::optional<std::string>& value,
                            std::string description);
  OptionDefinition& addFiles(std::string_view names, std::vector<std::string>& values,
                             std::string description);
  // One of the choices.
  OptionDefinition& addChoice(std::string_view names, std::string& value,
                              const std::vector<std::string_view>& choices, std::string description);
  OptionDefinition& addFlag(std::string_view names, bool& value, std::string description);

  CommandDefinition& addCommand(std::string name, std::string description);

  // Paragraphs below the options; lines that begin with blanks are examples.
  CommandDefinition& setFooter(std::string footer);
  // The heading in the help of the parent; a command without one is hidden.
  CommandDefinition& setSection(std::string section);

  const std::string& name() const { return name_; }
  std::string fullName() const;
  const std::string& description() const { return description_; }
  const std::string& footer() const { return footer_; }
  const std::string& section() const { return section_; }
  bool isHidden() const { return section_.empty(); }
  // False for the program itself.
  bool hasParent() const { return parent_ != nullptr; }
  // It only holds others together.
  bool needsCommand() const { return hasParent() && !commands_.empty(); }

  // In the order of their definition, -h,--help first.
  const std::vector<std::unique_ptr<OptionDefinition>>& options() const { return options_; }
  const std::vector<std::unique_ptr<CommandDefinition>>& commands() const { return commands_; }

  bool isHelp(const OptionDefinition& option) const { return &option == options_.front().get(); }
  // Null where there is none.
  const OptionDefinition* optionNamed(std::string_view name) const;
  const CommandDefinition* commandNamed(std::string_view name) const;
  // The last argument where that takes all that follow.
  const OptionDefinition* argument(std::size_t place) const;

 private:
  OptionDefinition& add(std::string_view names, std::string type, std::string description,
                        std::function<void(const std::string&)> take);

  std::string name_;
  std::string description_;
  std::string footer_;
  std::string section_ = "Commands";
  const CommandDefinition* parent_;
  std::vector<std::unique_ptr<OptionDefinition>> options_;
  std::vector<std::unique_ptr<CommandDefinition>> commands_;
};

}  // namespace quorlo
