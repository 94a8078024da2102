#include "cli/definition/completion.h"

#include "cli/definition/command_definition.h"
#include "cli/definition/help_topics.h"

#include <algorithm>
#include <cctype>
#include <iterator>
#include <ranges>

namespace quorlo {
namespace {

// Where the word that is being typed stands.
struct Place {
  const CommandDefinition* command;
  const OptionDefinition* awaiting = nullptr;  // the option whose value it is
  std::size_t arguments = 0;                   // given before it
  bool optionsAreOver = false;                 // behind "--"
};

void pass(Place& place, const std::string& word) {
  if (place.awaiting != nullptr) {
    place.awaiting = nullptr;
  } else if (!place.optionsAreOver && word == "--") {
    place.optionsAreOver = true;
  } else if (!place.optionsAreOver && word.size() > 1 && word.starts_with('-')) {
    const auto* const option = place.command->optionNamed(word);
    if (option != nullptr && !option->isFlag()) place.awaiting = option;
  } else if (const auto* inner = place.arguments == 0 ? place.command->commandNamed(word) : nullptr) {
    place = {inner};
  } else {
    ++place.arguments;
  }
}

// "on|off", but of "comma|tab|CHARACTER" only what can be typed as it stands.
std::vector<Candidate> choices(std::string_view type) {
  std::vector<Candidate> found;
  for (const auto part : std::views::split(type, '|')) {
    const std::string each(part.begin(), part.end());
    if (std::ranges::none_of(each, [](unsigned char c) { return std::isupper(c) != 0; }))
      found.push_back({each, ""});
  }
  return found;
}

void offerValues(const OptionDefinition& option, const StoredValues& stored, Completion& completion) {
  const auto& type = option.type;
  auto values = type.find('|') == std::string::npos ? stored(type) : choices(type);
  completion.takesFile = completion.takesFile || type == "FILE";
  std::ranges::move(values, std::back_inserter(completion.candidates));
}

void offerOptions(const CommandDefinition& command, Completion& completion) {
  for (const auto& each : command.options()) {
    if (!each->isArgument()) completion.candidates.push_back({each->shownName(), each->description});
  }
}

void offerCommands(const CommandDefinition& command, Completion& completion) {
  for (const auto& each : command.commands()) {
    if (!each->isHidden()) completion.candidates.push_back({each->name(), each->description()});
  }
}

void offerHelp(const CommandDefinition& program, Completion& completion) {
  offerCommands(program, completion);
  for (const auto& each : helpTopics()) completion.candidates.push_back({std::string(each.name), ""});
}

void keepBeginning(Completion& completion, std::string_view beginning) {
  std::erase_if(completion.candidates, [&](const auto& each) { return !each.text.starts_with(beginning); });
}

// "--folder=Le"
Completion completeAssigned(const Place& place, const std::string& word, std::size_t equals,
                            const StoredValues& stored) {
  Completion completion;
  const auto* const option = place.command->optionNamed(word.substr(0, equals));
  if (option == nullptr) return completion;
  offerValues(*option, stored, completion);
  for (auto& each : completion.candidates) each.text.insert(0, word, 0, equals + 1);
  keepBeginning(completion, word);
  return completion;
}

}  // namespace

Completion complete(const CommandDefinition& program, const std::vector<std::string>& words,
                    const StoredValues& stored) {
  Place place{&program};
  for (std::size_t i = 0; i + 1 < words.size(); ++i) pass(place, words[i]);
  const auto word = words.empty() ? std::string() : words.back();

  Completion completion;
  if (place.awaiting != nullptr) {
    offerValues(*place.awaiting, stored, completion);
  } else if (!place.optionsAreOver && word.starts_with('-')) {
    if (const auto equals = word.find('='); equals != std::string::npos) {
      return completeAssigned(place, word, equals, stored);
    }
    offerOptions(*place.command, completion);
  } else {
    if (place.arguments == 0) offerCommands(*place.command, completion);
    if (const auto* option = place.command->argument(place.arguments)) {
      if (option->type == "COMMAND") offerHelp(program, completion);
      offerValues(*option, stored, completion);
    }
  }
  keepBeginning(completion, word);
  return completion;
}

}  // namespace quorlo
