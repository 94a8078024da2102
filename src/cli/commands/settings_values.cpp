#include "cli/commands/settings_values.h"

#include "app/settings/json_list.h"
#include "app/settings/settings_controller.h"
#include "base/iso_date.h"

#include <fmt/format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <set>
#include <utility>
#include <variant>
#include <vector>

namespace quorlo {
namespace {

using Json = nlohmann::ordered_json;
using Kind = SettingKind;

constexpr std::string_view kNone = "none";

char lowerCase(char letter) {
  return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
}

std::string lowerCase(std::string_view text) {
  std::string lower(text);
  std::ranges::transform(lower, lower.begin(), [](char letter) { return lowerCase(letter); });
  return lower;
}

bool isSame(std::string_view a, std::string_view b) {
  return std::ranges::equal(
      a, b, {}, [](char c) { return lowerCase(c); }, [](char c) { return lowerCase(c); });
}

std::string names(const SettingDescription& setting, std::string_view between) {
  std::string list;
  for (const auto& each : setting.choices) list.append(list.empty() ? "" : between).append(each.name);
  return list;
}

const SettingChoice* choiceNamed(const SettingDescription& setting, std::string_view name) {
  const auto found =
      std::ranges::find_if(setting.choices, [&](const auto& each) { return isSame(each.name, name); });
  return found == setting.choices.end() ? nullptr : &*found;
}

std::vector<std::string> wordsIn(std::span<const std::string> arguments) {
  std::vector<std::string> words;
  for (const auto& argument : arguments) {
    for (std::size_t start = 0; (start = argument.find_first_not_of(' ', start)) != argument.npos;) {
      const auto end = std::min(argument.find(' ', start), argument.size());
      words.push_back(argument.substr(start, end - start));
      start = end;
    }
  }
  return words;
}

std::optional<DefaultsValue> readSwitch(const std::string& word) {
  for (const auto* on : {"true", "on", "yes", "1"}) {
    if (isSame(word, on)) return true;
  }
  for (const auto* off : {"false", "off", "no", "0"}) {
    if (isSame(word, off)) return false;
  }
  return std::nullopt;
}

std::optional<DefaultsValue> readNumber(const std::string& word) {
  double number = 0;
  const auto* const end = word.data() + word.size();
  const auto [rest, failure] = std::from_chars(word.data(), end, number);
  return failure == std::errc() && rest == end ? std::optional<DefaultsValue>(number) : std::nullopt;
}

std::optional<DefaultsValue> readSet(const SettingDescription& setting,
                                     const std::vector<std::string>& words) {
  if (words.size() == 1 && isSame(words.front(), kNone)) return std::int64_t{0};
  std::int64_t sum = 0;
  for (const auto& word : words) {
    const auto* const choice = choiceNamed(setting, word);
    if (!choice) return std::nullopt;
    sum |= choice->rawValue;
  }
  return words.empty() ? std::nullopt : std::optional<DefaultsValue>(sum);
}

std::optional<DefaultsValue> readWords(const SettingDescription& setting,
                                       const std::vector<std::string>& words) {
  if (setting.kind == Kind::set) return readSet(setting, words);
  if (words.size() != 1) return std::nullopt;
  const auto& word = words.front();
  const auto* const choice = choiceNamed(setting, word);
  switch (setting.kind) {
    case Kind::boolean:
      return readSwitch(word);
    case Kind::seconds:
      return readNumber(word);
    case Kind::choice:
      return choice ? std::optional<DefaultsValue>(choice->rawValue) : std::nullopt;
    case Kind::word:
      return choice ? std::optional<DefaultsValue>(choice->name) : std::nullopt;
    default:
      return std::nullopt;  // those that nobody sets from outside
  }
}

std::vector<std::string> namesIn(const SettingDescription& setting, std::int64_t number) {
  std::vector<std::string> members;
  for (const auto& each : setting.choices) {
    const bool isMeant = setting.kind == Kind::set ? (number & each.rawValue) != 0 : number == each.rawValue;
    if (isMeant) members.push_back(each.name);
  }
  return members;
}

std::string_view typeName(Kind kind) {
  switch (kind) {
    case Kind::boolean:
      return "boolean";
    case Kind::count:
      return "integer";
    case Kind::seconds:
      return "number";
    case Kind::date:
      return "date";
    case Kind::text:
      return "text";
    case Kind::list:
      return "list";
    case Kind::choice:
    case Kind::word:
      return "choice";
    case Kind::set:
      return "set";
  }
  return {};
}

Json valueJson(const SettingDescription& setting, const DefaultsValue* value) {
  if (!value) return {};
  if (const auto* date = std::get_if<Date>(value)) return isoDate(*date);
  if (const auto* flag = std::get_if<bool>(value)) return *flag;
  if (const auto* real = std::get_if<double>(value)) return *real;
  if (const auto* text = std::get_if<std::string>(value)) {
    if (setting.kind != Kind::list) return *text;
    const auto list = decodeJsonList(*text);
    return list ? Json(list.value()) : Json::array();
  }
  const auto number = std::get<std::int64_t>(*value);
  if (setting.kind == Kind::set) return namesIn(setting, number);
  if (setting.kind == Kind::choice) return namesIn(setting, number).front();
  return number;
}

}  // namespace

std::vector<Setting> settingsByKey() {
  std::vector<Setting> settings;
  std::set<std::string_view> keys;
  for (std::size_t i = 0; i < kSettingCount; ++i) {
    const auto setting = static_cast<Setting>(i);
    if (keys.insert(describe(setting).key).second) settings.push_back(setting);
  }
  return settings;
}

Result<Setting> settingWithKey(std::string_view key) {
  const auto settings = settingDescriptions();
  const auto found = std::ranges::find_if(settings, [&](const auto& each) { return isSame(each.key, key); });
  if (found != settings.end()) return static_cast<Setting>(found - settings.begin());
  auto message = fmt::format("There is no setting \"{}\".", key);
  std::string similar;
  for (const auto each : settingsByKey()) {
    const auto candidate = describe(each).key;
    const bool isSimilar = !key.empty() && lowerCase(candidate).find(lowerCase(key)) != std::string::npos;
    if (isSimilar) similar += fmt::format("\n  {}", candidate);
  }
  return Error{message + (similar.empty() ? " To see all: quorlo settings list" : " There are:" + similar)};
}

Status mayBeSet(const SettingDescription& setting) {
  if (setting.owner == SettingOwner::user) return {};
  return Error{fmt::format("\"{}\" is kept by Quorlo itself, and can only be read.", setting.key)};
}

Result<DefaultsValue> readSettingValue(const SettingDescription& setting,
                                       std::span<const std::string> words) {
  if (setting.kind == Kind::text && words.size() == 1) return DefaultsValue(words.front());
  const auto value = readWords(setting, wordsIn(words));
  if (value && allows(setting, *value)) return *value;
  std::string given;
  for (const auto& word : words) given.append(given.empty() ? "" : " ").append(word);
  return Error{
      fmt::format("\"{}\" is no value of {}, which takes {}", given, setting.key, allowedValues(setting))};
}

std::string allowedValues(const SettingDescription& setting) {
  switch (setting.kind) {
    case Kind::boolean:
      return "true or false";
    case Kind::count:
      return "a whole number";
    case Kind::seconds:
      return fmt::format("seconds from 0 to {}", kMaxPasteDelay.count());
    case Kind::date:
      return "a date";
    case Kind::text:
      return "a text";
    case Kind::list:
      return "texts";
    case Kind::choice:
    case Kind::word:
      return "one of: " + names(setting, ", ");
    case Kind::set:
      return "any of these with blanks between, or none: " + names(setting, " ");
  }
  return {};
}

std::string settingText(const SettingDescription& setting, const DefaultsValue* value) {
  const auto json = valueJson(setting, value);
  if (json.is_null()) return {};
  if (json.is_string()) return json.get<std::string>();
  if (setting.kind != Kind::set) return json.dump();
  std::string text;
  for (const auto& each : json) text.append(text.empty() ? "" : " ").append(each.get<std::string>());
  return text.empty() ? std::string(kNone) : text;
}

Json settingJson(const SettingDescription& setting, const DefaultsValue* value) {
  const auto& defaultValue = setting.defaultValue;
  Json json{{"key", setting.key},
            {"type", typeName(setting.kind)},
            {"value", valueJson(setting, value)},
            {"default", valueJson(setting, defaultValue ? &*defaultValue : nullptr)},
            {"readOnly", setting.owner == SettingOwner::program}};
  if (!setting.choices.empty()) {
    json["choices"] = Json::array();
    for (const auto& each : setting.choices) json["choices"].push_back(each.name);
  }
  if (setting.kind == Kind::seconds) {
    json["minimum"] = 0;
    json["maximum"] = kMaxPasteDelay.count();
  }
  json["meaning"] = setting.meaning;
  return json;
}

}  // namespace quorlo
