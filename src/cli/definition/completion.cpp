#include "cli/definition/completion.h"

#include "cli/definition/arguments.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cctype>

namespace quorlo {
namespace {

// Where the word that is being typed stands.
struct Place {
  const CLI::App* command;
  const CLI::Option* awaiting = nullptr;  // the option whose value it is
  std::size_t positionals = 0;            // given before it
  bool optionsAreOver = false;            // behind "--"
};

const CLI::App* commandNamed(const CLI::App& app, const std::string& name) {
  const auto found = app.get_subcommands([&](const CLI::App* each) { return each->get_name() == name; });
  return found.empty() ? nullptr : found.front();
}

void pass(Place& place, const std::string& word) {
  if (place.awaiting != nullptr) {
    place.awaiting = nullptr;
  } else if (!place.optionsAreOver && word == "--") {
    place.optionsAreOver = true;
  } else if (!place.optionsAreOver && word.size() > 1 && word.starts_with('-')) {
    const auto* const option = place.command->get_option_no_throw(word);
    if (option != nullptr && takesValue(*option)) place.awaiting = option;
  } else if (const auto* inner = place.positionals == 0 ? commandNamed(*place.command, word) : nullptr) {
    place = {inner};
  } else {
    ++place.positionals;
  }
}

const CLI::Option* positional(const CLI::App& command, std::size_t index) {
  const CLI::Option* last = nullptr;
  std::size_t count = 0;
  for (const auto* each : command.get_options()) {
    if (!each->get_positional()) continue;
    if (count++ == index) return each;
    last = each;
  }
  return last != nullptr && last->get_expected_max() > 1 ? last : nullptr;
}

// "on|off", but of "comma|tab|CHARACTER" only what can be typed as it stands.
std::vector<Candidate> choices(std::string_view type) {
  std::vector<Candidate> found;
  for (const auto& each : CLI::detail::split(std::string(type), '|')) {
    if (std::ranges::none_of(each, [](unsigned char c) { return std::isupper(c) != 0; }))
      found.push_back({each, ""});
  }
  return found;
}

void offerValues(const CLI::Option& option, const StoredValues& stored, Completion& completion) {
  const auto type = option.get_type_name();
  auto values = type.find('|') == std::string::npos ? stored(type) : choices(type);
  completion.takesFile = completion.takesFile || type == "FILE";
  std::ranges::move(values, std::back_inserter(completion.candidates));
}

void offerOptions(const CLI::App& command, Completion& completion) {
  for (const auto* each : command.get_options()) {
    for (const auto& name : each->get_lnames()) {
      completion.candidates.push_back({"--" + name, each->get_description()});
    }
  }
}

void offerCommands(const CLI::App& command, Completion& completion) {
  for (const auto* each : command.get_subcommands([](const CLI::App*) { return true; })) {
    if (!each->get_group().empty())
      completion.candidates.push_back({each->get_name(), each->get_description()});
  }
}

void keepBeginning(Completion& completion, std::string_view beginning) {
  std::erase_if(completion.candidates, [&](const auto& each) { return !each.text.starts_with(beginning); });
}

// "--folder=Le"
Completion completeAssigned(const Place& place, const std::string& word, std::size_t equals,
                            const StoredValues& stored) {
  Completion completion;
  const auto* const option = place.command->get_option_no_throw(word.substr(0, equals));
  if (option == nullptr) return completion;
  offerValues(*option, stored, completion);
  for (auto& each : completion.candidates) each.text.insert(0, word, 0, equals + 1);
  keepBeginning(completion, word);
  return completion;
}

}  // namespace

Completion complete(const CLI::App& app, const std::vector<std::string>& words, const StoredValues& stored) {
  Place place{&app};
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
    if (place.positionals == 0) offerCommands(*place.command, completion);
    if (const auto* option = positional(*place.command, place.positionals)) {
      offerValues(*option, stored, completion);
    }
  }
  keepBeginning(completion, word);
  return completion;
}

}  // namespace quorlo
