#include "platform/preferred_languages.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace quorlo {
namespace {

// The modifiers of glibc's locales that name a script, and the script's code.
constexpr std::array<std::pair<std::string_view, std::string_view>, 3> kScripts{
    {{"latin", "_Latn"}, {"cyrillic", "_Cyrl"}, {"devanagari", "_Deva"}}};

std::string icuName(std::string_view posixName) {
  std::string name(posixName.substr(0, posixName.find_first_of(".@")));
  if (name == "C" || name == "POSIX") return "en";
  const auto modifier = posixName.substr(std::min(posixName.find('@'), posixName.size()));
  for (const auto& [script, code] : kScripts) {
    if (modifier.substr(std::min<std::size_t>(1, modifier.size())) != script) continue;
    name.insert(std::min(name.find('_'), name.size()), code);
  }
  return name;
}

}  // namespace

std::vector<std::string> preferredLanguages(std::span<const std::string_view> values) {
  std::vector<std::string> languages;
  for (auto value : values) {
    while (!value.empty()) {
      const auto end = std::min(value.find(':'), value.size());
      auto name = icuName(value.substr(0, end));
      value.remove_prefix(std::min(end + 1, value.size()));
      if (!name.empty() && std::ranges::find(languages, name) == languages.end()) {
        languages.push_back(std::move(name));
      }
    }
  }
  if (languages.empty()) languages.emplace_back("en");
  return languages;
}

}  // namespace quorlo
