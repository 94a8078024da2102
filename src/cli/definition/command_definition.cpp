#include "cli/definition/command_definition.h"

#include "text/utf.h"

#include <algorithm>
#include <utility>

namespace quorlo {
namespace {

std::string faultOfText(const std::string& bytes) {
  const auto text = toUtf16Strict(bytes);
  return text ? std::string() : "not a text in UTF-8: " + text.error().message;
}

std::vector<std::string> separated(std::string_view names) {
  std::vector<std::string> list;
  for (std::size_t start = 0; start <= names.size();) {
    const auto end = std::min(names.find(',', start), names.size());
    list.emplace_back(names.substr(start, end - start));
    start = end + 1;
  }
  return list;
}

}  // namespace

OptionDefinition& OptionDefinition::required() {
  isRequired = true;
  return *this;
}

OptionDefinition& OptionDefinition::excludes(const OptionDefinition& other) {
  excluded = &other;
  return *this;
}

OptionDefinition& OptionDefinition::check(Fault fault) {
  faults.push_back(std::move(fault));
  return *this;
}

OptionDefinition& OptionDefinition::in(std::string sectionTitle) {
  section = std::move(sectionTitle);
  return *this;
}

CommandDefinition::CommandDefinition(std::string name, std::string description,
                                     const CommandDefinition* parent)
    : name_(std::move(name)), description_(std::move(description)), parent_(parent) {
  add("-h,--help", {}, "Print this help message and exit", [](const auto&) {});
}

OptionDefinition& CommandDefinition::addText(std::string_view names, std::optional<std::string>& value,
                                             std::string description, std::string type) {
  return add(names, std::move(type), std::move(description), [&value](const auto& word) { value = word; })
      .check(faultOfText);
}

OptionDefinition& CommandDefinition::addTexts(std::string_view names, std::vector<std::string>& values,
                                              std::string description, std::string type) {
  auto& option = add(names, std::move(type), std::move(description),
                     [&values](const auto& word) { values.push_back(word); });
  option.isRepeatable = true;
  return option.check(faultOfText);
}

OptionDefinition& CommandDefinition::addFile(std::string_view names, std::optional<std::string>& value,
                                             std::string description) {
  return add(names, "FILE", std::move(description), [&value](const auto& word) { value = word; });
}

OptionDefinition& CommandDefinition::addFiles(std::string_view names, std::vector<std::string>& values,
                                              std::string description) {
  auto& option =
      add(names, "FILE", std::move(description), [&values](const auto& word) { values.push_back(word); });
  option.isRepeatable = true;
  return option;
}

OptionDefinition& CommandDefinition::addChoice(std::string_view names, std::string& value,
                                               const std::vector<std::string_view>& choices,
                                               std::string description) {
  std::string all;
  for (const auto& each : choices) all.append(all.empty() ? "" : "|").append(each);
  const std::vector<std::string> known(choices.begin(), choices.end());
  return add(names, all, std::move(description), [&value](const auto& word) { value = word; })
      .check([known, all](const std::string& given) {
        return std::ranges::find(known, given) == known.end() ? "\"" + given + "\" is none of " + all : "";
      });
}

OptionDefinition& CommandDefinition::addFlag(std::string_view names, bool& value, std::string description) {
  return add(names, {}, std::move(description), [&value](const auto&) { value = true; });
}

CommandDefinition& CommandDefinition::addCommand(std::string name, std::string description) {
  commands_.push_back(std::make_unique<CommandDefinition>(std::move(name), std::move(description), this));
  return *commands_.back();
}

CommandDefinition& CommandDefinition::setFooter(std::string footer) {
  footer_ = std::move(footer);
  return *this;
}

CommandDefinition& CommandDefinition::setSection(std::string section) {
  section_ = std::move(section);
  return *this;
}

std::string CommandDefinition::fullName() const {
  return parent_ == nullptr ? name_ : parent_->fullName() + " " + name_;
}

const OptionDefinition* CommandDefinition::optionNamed(std::string_view name) const {
  for (const auto& each : options_) {
    if (std::ranges::find(each->names, name) != each->names.end()) return each.get();
  }
  return nullptr;
}

const CommandDefinition* CommandDefinition::commandNamed(std::string_view name) const {
  const auto found = std::ranges::find(commands_, name, [](const auto& each) { return each->name(); });
  return found == commands_.end() ? nullptr : found->get();
}

const OptionDefinition* CommandDefinition::argument(std::size_t place) const {
  const OptionDefinition* last = nullptr;
  std::size_t count = 0;
  for (const auto& each : options_) {
    if (!each->isArgument()) continue;
    if (count++ == place) return each.get();
    last = each.get();
  }
  return last != nullptr && last->isRepeatable ? last : nullptr;
}

OptionDefinition& CommandDefinition::add(std::string_view names, std::string type, std::string description,
                                         std::function<void(const std::string&)> take) {
  auto& option = *options_.emplace_back(std::make_unique<OptionDefinition>());
  if (names.starts_with('-')) {
    option.names = separated(names);
    option.section = "Options";
  } else {
    option.argument = names;
  }
  option.type = std::move(type);
  option.description = std::move(description);
  option.take = std::move(take);
  return option;
}

}  // namespace quorlo
