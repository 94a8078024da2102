#pragma once

#include <functional>
#include <string>
#include <vector>

namespace quorlo {

// An option of a command, or an argument, which is known by its place.
struct OptionDefinition {
  using Fault = std::function<std::string(const std::string&)>;  // of a value; empty for a good one

  std::vector<std::string> names;  // "-f" and "--folder"; none for an argument
  std::string argument;            // the name of an argument
  std::string type;                // of the value; empty for a flag
  std::string description;
  std::string section;  // of the help
  bool isRequired = false;
  bool isRepeatable = false;
  const OptionDefinition* excluded = nullptr;
  std::vector<Fault> faults;
  std::function<void(const std::string&)> take;  // gets each value in turn, an empty one for a flag

  bool isArgument() const { return names.empty(); }
  bool isFlag() const { return type.empty(); }
  // As messages call it: its longest name.
  const std::string& shownName() const { return isArgument() ? argument : names.back(); }

  OptionDefinition& required();
  OptionDefinition& excludes(const OptionDefinition& other);
  OptionDefinition& check(Fault fault);
  OptionDefinition& in(std::string sectionTitle);
};

}  // namespace quorlo
