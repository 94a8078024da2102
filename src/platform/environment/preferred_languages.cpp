#include "platform/environment/preferred_languages.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

namespace quorlo {
namespace {

// The modifiers of glibc's locales that name a script, and the script's code.
constexpr std::array<std::pair<std::string_view, std::string_view>, 3> kScripts{
    {{"latin", "_Latn"}, {"cyrillic", "_Cyrl"}, {"devanagari", "_Deva"}}};

bool isLetter(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

// ICU 72 reads beyond its buffers when it opens a date format for a locale whose language is very long.
bool isLocaleName(std::string_view name) {
  constexpr std::size_t kMostSubtags = 4;  // language, script, country and a variant
  constexpr std::size_t kLongestSubtag = 8;
  for (std::size_t subtags = 1; subtags <= kMostSubtags; ++subtags) {
    const auto end = std::min(name.find('_'), name.size());
    const auto fits = [&](char c) { return isLetter(c) || (subtags > 1 && c >= '0' && c <= '9'); };
    if (end == 0 || end > kLongestSubtag || !std::ranges::all_of(name.substr(0, end), fits)) return false;
    if (end == name.size()) return true;
    name.remove_prefix(end + 1);
  }
  return false;
}

// Empty for what names no locale.
std::string icuName(std::string_view posixName) {
  std::string name(posixName.substr(0, posixName.find_first_of(".@")));
  if (name == "C" || name == "POSIX") return "en";
  if (!isLocaleName(name)) return {};
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
