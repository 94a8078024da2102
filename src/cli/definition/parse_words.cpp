#include "cli/definition/parse_words.h"

#include "cli/definition/command_definition.h"

#include <cctype>
#include <cstddef>
#include <optional>
#include <set>
#include <string_view>

namespace quorlo {
namespace {

bool isLetter(char c) {
  return std::isalpha(static_cast<unsigned char>(c)) != 0;
}

bool isLong(std::string_view word) {
  return word.size() > 2 && word.starts_with("--") && isLetter(word[2]);
}

// Neither "-" nor what an abbreviation may begin with, such as "-)" and "-1".
bool isShort(std::string_view word) {
  return word.size() > 1 && word[0] == '-' && isLetter(word[1]);
}

class WordParser {
 public:
  WordParser(const CommandDefinition& root, std::span<const std::string> words)
      : rest_(words), parsed_{.command = &root, .asksForHelp = false, .fault = {}} {}

  ParsedWords parse() {
    bool optionsAreOver = false;
    while (!rest_.empty()) {
      const auto& word = next();
      if (optionsAreOver) {
        takeArgument(word);
      } else if (word == "--") {
        optionsAreOver = true;
      } else if (isLong(word)) {
        takeLong(word);
      } else if (isShort(word)) {
        takeShort(word);
      } else if (const auto* const inner = arguments_ == 0 ? parsed_.command->commandNamed(word) : nullptr) {
        enter(*inner);
      } else {
        takeArgument(word);
      }
    }
    checkCompleteness();
    if (parsed_.command->needsCommand()) blame("one of its commands is required");
    return parsed_;
  }

 private:
  const std::string& next() {
    const auto& word = rest_.front();
    rest_ = rest_.subspan(1);
    return word;
  }

  void enter(const CommandDefinition& command) {
    checkCompleteness();
    parsed_.command = &command;
  }

  void takeLong(const std::string& word) {
    const auto equals = word.find('=');
    const auto name = word.substr(0, equals);
    std::optional<std::string> value;
    if (equals != std::string::npos) value = word.substr(equals + 1);
    if (const auto* const option = optionNamed(name, word)) takeOption(*option, value);
  }

  void takeShort(const std::string& word) {
    for (std::size_t i = 1; i < word.size(); ++i) {
      const auto* const option = optionNamed({'-', word[i]}, word);
      if (option == nullptr) return;
      if (option->isFlag()) {
        takeOption(*option, std::nullopt);
      } else {
        const bool isLast = i + 1 == word.size();
        return takeOption(*option, isLast ? std::nullopt : std::optional(word.substr(i + 1)));
      }
    }
  }

  const OptionDefinition* optionNamed(const std::string& name, const std::string& word) {
    const auto* const option = parsed_.command->optionNamed(name);
    if (option == nullptr) blame("not expected: " + word);
    return option;
  }

  void takeOption(const OptionDefinition& option, std::optional<std::string> value) {
    if (parsed_.command->isHelp(option)) parsed_.asksForHelp = true;
    if (option.isFlag()) {
      if (value) return blame(option.shownName() + " takes no value");
      return take(option, {});
    }
    if (!value && rest_.empty()) return blame(option.shownName() + " needs a value: " + option.type);
    take(option, value ? *value : next());
  }

  void takeArgument(const std::string& word) {
    const auto* const argument = parsed_.command->argument(arguments_++);
    if (argument == nullptr) return blame("not expected: " + word);
    take(*argument, word);
  }

  void take(const OptionDefinition& option, const std::string& value) {
    const bool isFirst = given_.insert(&option).second;
    if (!isFirst && !option.isRepeatable && !option.isFlag()) {
      return blame(option.shownName() + " is given more than once");
    }
    for (const auto& each : option.faults) {
      if (const auto fault = each(value); !fault.empty()) return blame(option.shownName() + ": " + fault);
    }
    option.take(value);
  }

  void checkCompleteness() {
    for (const auto& each : parsed_.command->options()) {
      const bool isGiven = given_.contains(each.get());
      if (each->isRequired && !isGiven) blame(each->shownName() + " is required");
      if (isGiven && each->excluded != nullptr && given_.contains(each->excluded)) {
        blame(each->shownName() + " excludes " + each->excluded->shownName());
      }
    }
  }

  void blame(const std::string& fault) {
    if (parsed_.fault.empty()) parsed_.fault = fault;
  }

  std::span<const std::string> rest_;
  ParsedWords parsed_;
  std::set<const OptionDefinition*> given_;
  std::size_t arguments_ = 0;  // of the present command
};

}  // namespace

ParsedWords parseWords(const CommandDefinition& root, std::span<const std::string> words) {
  return WordParser(root, words).parse();
}

}  // namespace quorlo
